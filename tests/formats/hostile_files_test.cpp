// Files that were cut, or whose numbers were changed to the worst: whatever they say, reading them ends, and the mesh is sound.

#include <gtest/gtest.h>

#include "formats/entity_limit.h"
#include "formats/format_files.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

constexpr int worst_numbers[] = {0, 1, -1, INT_MIN, INT_MAX};

// A small mesh with everything that a file can hold.
std::string small_file(const Format& format) {
  Random random(8);
  trTriBlock mesh;
  fill(mesh, {12, 6, 2, 3}, random);
  return write_format(format, mesh).bytes;
}

// Reads into an empty mesh and behind another, and checks what must hold for any file.
void check_reading(const Format& format, const std::string& bytes, const std::function<void(const ReadOutcome&, const trTriBlock&)>& check = {}) {
  for (const int append : {0, 1}) {
    BlockOf mesh(flat_sheet(1, 1));
    mesh.set_node_data_size(1);
    const ReadOutcome read = read_format(format, mesh, bytes, {1, 0, append, 1});
    EXPECT_TRUE(read.result == 0 || read.result == 1);
    EXPECT_TRUE(is_sound(mesh));
    EXPECT_LE(mesh.valid_nodes(), 4 + static_cast<int>(bytes.size())) << "nodes out of nothing";
    EXPECT_LE(mesh.valid_elements(), 2 + static_cast<int>(bytes.size())) << "elements out of nothing";
    EXPECT_LE(std::max(mesh.node_count(), mesh.element_count()), (1 << 24) + 10);
    if (check && append == 0) check(read, mesh);
  }
}

}  // namespace

TEST(HostileFiles, CutAtEveryByte) {
  for (const Format* format : formats) {
    const std::string whole = small_file(*format);
    trTriBlock mesh;
    read_format(*format, mesh, whole, {1, 0, 0, 1});
    const int elements = mesh.valid_elements();
    ASSERT_GT(elements, 3);
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
      SCOPED_TRACE(testing::Message() << format->name << " cut at " << cut << " of " << whole.size());
      check_reading(*format, whole.substr(0, cut), [&](const ReadOutcome& read, const trTriBlock& part) {
        EXPECT_EQ(read.err, format == &native_format && cut < 80 ? "Error reading file header data\n" : "");
        if (format == &native_format) {
          EXPECT_EQ(read.result, cut >= 80);
          EXPECT_EQ(read.out.find("WARNING: File is corrupt.") != std::string::npos, cut >= 80 && cut < whole.size() - 4);
        } else {
          EXPECT_EQ(read.result, format != &kvx_format);
          EXPECT_EQ(read.out.find("WARNING"), std::string::npos);
        }
        if (format == &kvx_format) {
          EXPECT_EQ(part.node_count(), 1) << "nothing of a file that was cut is believed";
        }
        if (format != &flat_triangle_format && format != &smooth_triangle_format) {
          EXPECT_LE(part.valid_elements(), elements);
        }
      });
    }
  }
}

// Every four bytes of a binary file that may be a number.
TEST(HostileFiles, BinaryNumbersChangedToTheWorst) {
  int corrupt = 0;
  for (const Format* format : {&native_format, &kvx_format}) {
    const std::string whole = small_file(*format);
    const std::size_t attributes = whole.find("NDTI") + 8;  // two bytes, which shift all behind them
    for (std::size_t at = format == &native_format ? 80 : 0; at + 4 <= whole.size(); at += at == attributes ? 2 : 4) {
      for (const int number : worst_numbers) {
        SCOPED_TRACE(testing::Message() << format->name << ": " << number << " at " << at);
        std::string bytes = whole;
        bytes.replace(at, 4, Bytes().put(number));
        if (bytes == whole) continue;
        check_reading(*format, bytes, [&](const ReadOutcome& read, const trTriBlock&) {
          if (format == &kvx_format) {
            EXPECT_EQ(read.result, 0) << "damage was not noticed";
          }
          corrupt += read.out.find("WARNING: File is corrupt. [") != std::string::npos;
        });
      }
    }
  }
  EXPECT_GE(corrupt, 50);
}

TEST(HostileFiles, TextNumbersChangedToTheWorst) {
  int changed = 0;
  for (const Format* format : {&flat_triangle_format, &smooth_triangle_format, &mesh_format}) {
    const std::string whole = small_file(*format);
    for (std::size_t at = 0; (at = whole.find_first_of("-0123456789", at)) != std::string::npos;) {
      const std::size_t end = std::min(whole.find_first_not_of("-.0123456789", at), whole.size());
      for (const char* number : {"0", "1", "-1", "-2147483648", "2147483647", "99999999999999999999", "nan", "1e999"}) {
        SCOPED_TRACE(testing::Message() << format->name << ": " << number << " at " << at);
        std::string text = whole;
        check_reading(*format, text.replace(at, end - at, number));
        ++changed;
      }
      at = end;
    }
  }
  EXPECT_GE(changed, 1000);
}

TEST(HostileFiles, NumbersMayLeaveGapsInProportionToTheFile) {
  const std::string tiny(100, '\0'), large(28 * 300000, '\0');
  for (const auto& [bytes, highest] : {std::pair(tiny, 1 << 24), std::pair(large, 64 * 300000)}) {
    std::FILE* file = stream_on(bytes);
    const NumberLimit limit(file, 28);
    EXPECT_TRUE(limit.allows(1) && limit.allows(highest));
    EXPECT_FALSE(limit.allows(0) || limit.allows(-1) || limit.allows(INT_MIN) || limit.allows(highest + 1) || limit.allows(INT_MAX));
    std::fclose(file);
  }
  trTriBlock mesh;
  read_format(mesh_format, mesh, "NODES,3F16\n 300000 1 2 3\n");
  EXPECT_EQ(mesh.node_count(), 300001);
}

// Disk after disk, each with room for more: a writer never fails for any other reason than the room, and nothing is closed twice.
TEST(HostileFiles, WritersOnDisksThatAreFull) {
  BlockOf mesh(flat_sheet(3, 3));
  for (const Format* format : formats) {
    const std::size_t whole = write_format(*format, mesh).bytes.size();
    for (std::size_t room = 0; room <= whole; room += 97) {
      const int result = write_to_full_disk(*format, mesh, room).result;
      if (format == &kvx_format) {
        EXPECT_EQ(result, room >= whole) << room << " of " << whole;
      }
    }
    EXPECT_EQ(write_to_full_disk(*format, mesh, whole).result, 1) << format->name;
  }
}
