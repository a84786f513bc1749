// File actions: which file a name means, what is said of it, what becomes of mesh and history.

#include <gtest/gtest.h>

#include <filesystem>

#include "control/host.h"
#include "formats/tri_write.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"

namespace {

namespace fs = std::filesystem;

// A folder of its own that is the current one while the object lives, so that messages name files as given.
class FilesTest : public testing::Test {
 protected:
  FilesTest() : former_(fs::current_path()) {
    std::string name = testing::TempDir() + "mendex-files-XXXXXX";
    folder_ = mkdtemp(&name[0]);
    fs::current_path(folder_);
  }
  ~FilesTest() override {
    fs::current_path(former_);
    fs::remove_all(folder_);
  }

  // A mesh of n triangles under a name, whatever its extension says, in the native format or in binary STL.
  static void write_native(const std::string& name, int triangles) { write(name, triangles, &trTriWrite::write_native); }
  static void write_stl(const std::string& name, int triangles) { write(name, triangles, &trTriWrite::write_stl); }

  std::string taken() {
    std::string text = output.take();
    const std::size_t header = text.find(" MENDEX native file (format 1.2)\n");
    if (header != std::string::npos) text.erase(header, 33);
    return text;
  }

  Host host;
  CapturedOutput output;

 private:
  static void write(const std::string& name, int triangles, int (trTriWrite::*format)(int)) {
    const BlockOf block(cone_fan(triangles));
    trTriWrite writer(&block, std::fopen(name.c_str(), "wb"), 1.0);
    EXPECT_EQ((writer.*format)(0), 1);
  }

  fs::path former_;
  fs::path folder_;
};

}  // namespace

TEST_F(FilesTest, ExtensionsAreRecognisedToTheLetter) {
  const std::pair<const char*, trFileType> cases[] = {
      {"a.mnx", tr_native_file},   {"a.mes", tr_mesh_file},    {"a.tri", tr_triangle_file}, {"a.stl", tr_stl_file},
      {"a.ast", tr_ascii_stl_file}, {"a.kvx", tr_kvx_file},     {".stl", tr_stl_file},       {"stl", tr_unknown_file},
      {"a.STL", tr_unknown_file},  {"a.stl ", tr_unknown_file}, {"astl", tr_unknown_file},   {"", tr_unknown_file},
      {"a.mnx.stl", tr_stl_file},
  };
  for (const auto& [name, type] : cases) EXPECT_EQ(Host::recognize_extension(name), type) << name;
}

// A name without a usable extension is tried with each, in the order of the table, and then as it is.
TEST_F(FilesTest, NamesAreSearchedInTheOrderOfTheFormats) {
  write_stl("model.stl", 4);
  EXPECT_EQ(host.action_read("model"), tr_stl_file);
  EXPECT_EQ(output.take().substr(0, 26), "File 'model.stl' found.\n B");
  write_native("model.mnx", 3);
  EXPECT_EQ(host.action_read("model"), tr_native_file);
  EXPECT_EQ(taken(), "File 'model.mnx' found.\nUndo information for 'model.stl' has been cancelled.\n");
  EXPECT_EQ(host.valid_elements(), 3);
  EXPECT_EQ(host.file_name(), "model.mnx");
  write_native("part.stl.mnx", 5);  // stands in for part.stl, which is not there
  EXPECT_EQ(host.action_read("part.stl"), tr_native_file);
  EXPECT_EQ(host.valid_elements(), 5);
  write_native("model.xyz", 6);
  output.take();
  EXPECT_EQ(host.action_read("model.xyz"), tr_native_file);
  EXPECT_EQ(taken(),
            "File assumed to be in native format.\nFile 'model.xyz' found.\n"
            "Undo information for 'part.stl.mnx' has been cancelled.\n");
  EXPECT_EQ(host.valid_elements(), 6);
}

// A folder of a model's name is no file: the model next to it is found, and without one the mesh stays.
TEST_F(FilesTest, WhatIsNotThereIsSaidAndChangesNothing) {
  add_to(host.triblock(), closed_box());
  for (const bool is_folder : {false, true}) {
    if (is_folder) fs::create_directory("a.stl");
    EXPECT_EQ(host.action_read("a.stl"), tr_unknown_file);
    EXPECT_EQ(output.take(), "File 'a.stl' not found.\n");
  }
  EXPECT_EQ(host.action_append("model.STL"), tr_unknown_file);
  EXPECT_EQ(output.take(), "No file 'model.STL' with recognized extension.\n");
  EXPECT_EQ(host.valid_elements(), 12);
  EXPECT_EQ(host.file_name(), "");
  EXPECT_TRUE(host.updates.empty());
  const MarkingHook hook;
  host.action_read("a.stl");
  EXPECT_EQ(output.take(), "<File 'a.stl<' not found.\n");
  write_native("a.stl.mnx", 2);
  EXPECT_EQ(host.action_read("a.stl"), tr_native_file);
}

// Reading starts a new history and obeys the range; appending does neither.
TEST_F(FilesTest, ReadingReplacesAndAppendingAdds) {
  write_stl("six.stl", 6);
  host.action_stlrange(3, 4);
  host.action_read("six.stl");
  EXPECT_EQ(host.valid_elements(), 2);
  EXPECT_EQ(host.undo_hist().filename(), "six.stl");
  host.start_undo("delete");
  host.triblock().delete_element(1);
  host.finish_undo(1);
  host.action_append("six.stl");
  EXPECT_EQ(host.valid_elements(), 7);
  EXPECT_EQ(host.undo_hist().current(), 0);
  EXPECT_EQ(host.updates, (std::vector<int>{1, 1}));
}

// Half a model must not pass for a whole one; what was appended by then stays.
TEST_F(FilesTest, AnInterruptedReadLeavesNothing) {
  write_stl("six.stl", 6);
  host.action_read("six.stl");
  output.take();
  {
    const InterruptingHandler handler(3);
    host.action_append("six.stl");
  }
  EXPECT_EQ(host.valid_elements(), 8);
  output.take();
  const InterruptingHandler handler(3);
  EXPECT_EQ(host.action_read("six.stl"), tr_stl_file);
  EXPECT_NE(output.take().find("\n*** WARNING! ALL TRIANGLES DELETED ***\n"), std::string::npos);
  EXPECT_EQ(host.triblock().element_count(), 1);
}

TEST_F(FilesTest, WritingGoesByTheNameAndAddsTheNativeExtension) {
  add_to(host.triblock(), closed_box());
  host.triblock().delete_element(5);
  host.action_write("out");
  EXPECT_EQ(output.take(), "Opening file 'out.mnx' (native format).\n");
  EXPECT_TRUE(fs::exists("out.mnx"));
  EXPECT_EQ(host.file_name(), "out.mnx");
  host.action_write("part.dat");
  EXPECT_TRUE(fs::exists("part.dat.mnx"));
  output.take();
  host.action_write("/nonexistent/part.stl");
  EXPECT_EQ(output.take(), "Failed to open'/nonexistent/part.stl'\n");
  EXPECT_EQ(host.file_name(), "part.dat.mnx");
  for (const char* name : {"a.mes", "a.tri", "a.stl", "a.ast", "a.kvx"}) {
    host.action_write(name);
    Host other;
    other.action_read(name);
    EXPECT_EQ(other.valid_elements(), 11) << name;
  }
  EXPECT_TRUE(host.updates.empty());
}

// `rwrite` numbers anew and stays in force for nobody else; the format decides whether numbers are kept at all.
TEST_F(FilesTest, RwriteNumbersAnew) {
  add_to(host.triblock(), closed_box());
  host.triblock().delete_element(5);
  host.action_rwrite("new.mnx");
  host.action_write("old.mnx");
  Host other;
  other.action_read("new.mnx");
  EXPECT_EQ(other.triblock().element_count(), 12);
  other.action_read("old.mnx");
  EXPECT_EQ(other.triblock().element_count(), 13);
  EXPECT_EQ(other.triblock().element(5).valid(), 0);
}

TEST_F(FilesTest, SmoothDecidesHowTriangleFilesAreWritten) {
  add_to(host.triblock(), closed_box());
  host.action_write("smooth.tri");
  host.action_trismooth(tr_flag_off);
  host.action_write("flat.tri");
  Host other;
  other.action_read("smooth.tri");
  EXPECT_EQ(other.triblock().valid_nodes(), 8);
  other.action_read("flat.tri");
  EXPECT_EQ(other.triblock().valid_nodes(), 36);
  EXPECT_EQ(other.triblock().node_data_size(), 0);
  other.action_preserve(tr_flag_on);
  other.action_read("flat.tri");
  EXPECT_EQ(other.triblock().node_data_size(), 5);
}

TEST_F(FilesTest, AnInterruptedWriteIsSaidToBeCorrupt) {
  add_to(host.triblock(), closed_box());
  const InterruptingHandler handler(4);
  host.action_write("cut.mnx");
  EXPECT_EQ(output.take(), "*** WARNING! OUTPUT FILE 'cut.mnx' HAS BEEN CORRUPTED! ***\n");
  EXPECT_TRUE(fs::exists("cut.mnx"));
}
