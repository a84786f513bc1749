// Memory that runs out at any allocation of any action, reader or writer: nothing crashes, is thrown or leaks, the mesh stays valid,
// and finish_undo(0) brings it back. And memory that is all given back in the end.
//
// MENDEX_FAULT_ALLOCATIONS: the allocations of each operation that are refused in turn, spread evenly; 0 for every one.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "faults/failing_memory.h"
#include "faults/fault_cases.h"
#include "faults/fault_host.h"
#include "formats/tri_read.h"
#include "formats/tri_write.h"

namespace {

using Mode = FailingMemory::Mode;

constexpr Mode both_modes[] = {Mode::once, Mode::from_there_on};

// Calls try_one(k, mode) for allocations 1 to `last` of an operation; for very many, for some of them.
template <class Try>
void for_each_allocation(long last, Try try_one) {
  const char* const text = std::getenv("MENDEX_FAULT_ALLOCATIONS");
  const long tried = text == nullptr ? 60 : std::atol(text);
  const long step = tried == 0 ? 1 : std::max(1L, last / tried);
  for (const Mode mode : both_modes) {
    for (long k = 1; k <= last && !testing::Test::HasFatalFailure(); k += step) try_one(k, mode);
  }
}

class MemoryFailure : public testing::TestWithParam<FaultCase> {
 protected:
  static long allocations_of(const Shape& model, void (FaultHost::*edit)()) {
    FaultHost host(model, GetParam());
    FailingMemory::start(0);
    (host.*edit)();
    return FailingMemory::stop();
  }
};

std::string name_of(const testing::TestParamInfo<FaultCase>& info) { return info.param.name; }

struct Format {
  const char* name;
  int (*read)(trTriRead&);
  int (*write)(trTriWrite&);
};

void PrintTo(const Format& format, std::ostream* out) { *out << format.name; }

const Format formats[] = {
    {"native", [](trTriRead& in) { return in.read_native(); }, [](trTriWrite& out) { return out.write_native(0); }},
    {"mesh", [](trTriRead& in) { return in.read_mes(); }, [](trTriWrite& out) { return out.write_mes(1); }},
    {"triangle", [](trTriRead& in) { return in.read_tri(); }, [](trTriWrite& out) { return out.write_smooth_tri(); }},
    {"flat_triangle", [](trTriRead& in) { return in.read_tri(); }, [](trTriWrite& out) { return out.write_tri(); }},
    {"stl", [](trTriRead& in) { return in.read_stl(1, 0); }, [](trTriWrite& out) { return out.write_stl(1); }},
    {"ast", [](trTriRead& in) { return in.read_ast(1, 0); }, [](trTriWrite& out) { return out.write_ast(1); }},
    {"kvx", [](trTriRead& in) { return in.read_kvx(); }, [](trTriWrite& out) { return out.write_kvx(); }},
};

class FormatMemory : public testing::TestWithParam<Format> {
 protected:
  // A mesh with attributes and colours, so that there is something to read beside nodes and elements.
  FormatMemory() {
    add_to(mesh_, messy_model(400));
    mesh_.set_node_data_size(2);
    for (int i = 1; i < mesh_.node_count(); ++i) mesh_.node_data(i).values[1] = i;
    for (int e = 1; e < mesh_.element_count(); ++e) mesh_.set_element_colour(e, e / 50);
    bytes_ = written(mesh_);
  }

  struct File {
    char* bytes = nullptr;
    std::size_t size = 0;
  };
  std::string written(const trTriBlock& mesh) const {
    File file;
    EXPECT_EQ(write(mesh, file, 0, Mode::once), 1);
    const std::string bytes(file.bytes, file.size);
    std::free(file.bytes);
    return bytes;
  }
  int write(const trTriBlock& mesh, File& file, long k, Mode mode) const {
    trTriWrite writer(&mesh, open_memstream(&file.bytes, &file.size), 1.0);
    FailingMemory::start(k, mode);
    const int result = GetParam().write(writer);
    requests_ = FailingMemory::stop();
    return result;
  }
  int read(trTriBlock& mesh, int append, long k, Mode mode) const {
    trTriRead reader(&mesh, fmemopen(const_cast<char*>(bytes_.data()), bytes_.size(), "rb"), append, 1);
    FailingMemory::start(k, mode);
    const int result = GetParam().read(reader);
    requests_ = FailingMemory::stop();
    return result;
  }

  const Silence silence_;
  trTriBlock mesh_;
  std::string bytes_;
  mutable long requests_ = 0;
};

std::string name_of_format(const testing::TestParamInfo<Format>& info) { return info.param.name; }

}  // namespace

TEST_P(MemoryFailure, LeavesAValidMeshThatCanBeTakenBack) {
  const Shape model = messy_model(60);
  const long last = allocations_of(model, &FaultHost::act);
  ASSERT_GT(last, 3);
  for_each_allocation(last, [&](long k, Mode mode) {
    SCOPED_TRACE((mode == Mode::once ? "without allocation " : "without memory from allocation ") + std::to_string(k));
    FaultHost host(model, GetParam());
    FailingMemory::start(k, mode);
    host.open();
    // A host looks whether its edit is recorded before it makes it.
    const bool is_open = GetParam().brackets_itself || host.triblock().undo != nullptr;
    if (is_open) host.run();
    if (mode == Mode::once) FailingMemory::stop();
    if (is_open) host.take_back();
    FailingMemory::stop();
    ASSERT_EQ(host.difference(), "");
    ASSERT_TRUE(is_sound(host.triblock()));
    host.prepare();  // and goes on as if nothing had been
    host.act();
    ASSERT_TRUE(is_sound(host.triblock()));
    ASSERT_NE(host.difference(), "");
  });
}

// What stays of an edit that was not taken back is a mesh in which the next one finds its way: unless, as after an interruption, corners
// name nodes that a merge has deleted already.
TEST_P(MemoryFailure, LeavesAValidMeshThatCanBeEdited) {
  constexpr Excuses half_done{false, true};
  const Shape model = messy_model(60);
  const long last = allocations_of(model, &FaultHost::run);
  for_each_allocation(last, [&](long k, Mode mode) {
    SCOPED_TRACE(k);
    FaultHost host(model, GetParam());
    FailingMemory::start(k, mode);
    host.run();
    FailingMemory::stop();
    ASSERT_TRUE(is_sound(host.triblock(), half_done));
    if (!is_sound(host.triblock())) return;
    host.run();
    ASSERT_TRUE(is_sound(host.triblock()));
  });
}

INSTANTIATE_TEST_SUITE_P(Actions, MemoryFailure, testing::ValuesIn(fault_cases()), name_of);

TEST_P(FormatMemory, ReaderWithoutMemoryLeavesAValidMesh) {
  for (const int append : {0, 1}) {
    trTriBlock whole;
    add_to(whole, closed_box());
    ASSERT_EQ(read(whole, append, 0, Mode::once), 1);
    const BlockSnapshot expected(whole);
    for_each_allocation(requests_, [&](long k, Mode mode) {
      SCOPED_TRACE((append ? "appending, " : "reading, ") + std::to_string(k));
      trTriBlock mesh;
      add_to(mesh, closed_box());
      const int result = read(mesh, append, k, mode);
      ASSERT_TRUE(is_sound(mesh));
      if (result == 1) {
        ASSERT_EQ(expected.difference(BlockSnapshot(mesh)), "");
      }
      if (!append) {
        ASSERT_EQ(read(mesh, 0, 0, Mode::once), 1);
      }
      if (!append) {
        ASSERT_EQ(expected.difference(BlockSnapshot(mesh)), "");
      }
    });
  }
}

TEST_P(FormatMemory, WriterWithoutMemoryTellsSo) {
  const BlockSnapshot before(mesh_);
  File file;
  const int whole = write(mesh_, file, 0, Mode::once);
  std::free(file.bytes);
  ASSERT_EQ(whole, 1);
  for_each_allocation(requests_, [&](long k, Mode mode) {
    SCOPED_TRACE(k);
    File other;
    const int result = write(mesh_, other, k, mode);
    const std::string bytes(other.bytes, other.size);
    std::free(other.bytes);
    if (result == 1) {
        ASSERT_EQ(bytes, bytes_);
      }
    ASSERT_EQ(before.difference(BlockSnapshot(mesh_)), "");
  });
}

INSTANTIATE_TEST_SUITE_P(Formats, FormatMemory, testing::ValuesIn(formats), name_of_format);

// A hundred times a model is read, mended and written: then nothing is in use that was not after the first time.
TEST(Memory, IsAllGivenBack) {
  const Silence silence;
  const std::string folder = testing::TempDir() + "mendex_memory";
  std::filesystem::create_directories(folder);
  const auto open_files = [] {
    const auto begin = std::filesystem::directory_iterator("/proc/self/fd");
    return std::distance(begin, std::filesystem::directory_iterator());
  };
  const char* const extensions[] = {"mnx", "mes", "tri", "stl", "ast", "kvx"};
  const auto cycle = [&](int k) {
    const FaultCase& edit = fault_cases()[static_cast<std::size_t>(k) % fault_cases().size()];
    const std::string name = folder + "/model." + extensions[static_cast<std::size_t>(k) % std::size(extensions)];
    FaultHost host(messy_model(60), edit);
    host.action_write(utString(name));
    ASSERT_NE(host.action_read(utString(name)), tr_unknown_file);
    edit.prepare(host);
    host.act();
    if (!edit.brackets_itself) host.finish_undo(1);
    host.action_undo(100);
    host.action_redo(100);
    host.section().section(gi_z_axis, 0.1);
    host.action_info(1, 0.1, nullptr);
    host.action_write(utString(name));
  };
  const int cycles = static_cast<int>(fault_cases().size() * std::size(extensions));
  for (int k = 0; k < cycles; ++k) cycle(k);  // what is kept for good is made now
  const long bytes = FailingMemory::live_bytes();
  const auto files = open_files();
  for (int k = 0; k < 100; ++k) cycle(k);
  EXPECT_LE(FailingMemory::live_bytes(), bytes);  // the C library may have given something back, too
  EXPECT_EQ(open_files(), files);
  std::filesystem::remove_all(folder);
}
