#include "architecture/include_ladder.h"

#include "build_paths.h"

#include <gtest/gtest.h>

namespace {

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

struct WrongInclude {
  const char* name;
  const char* path;
  const char* line;
};

std::string case_name(const testing::TestParamInfo<WrongInclude>& wrong) { return wrong.param.name; }

class WrongIncludes : public testing::TestWithParam<WrongInclude> {};

// A small tree in which every arrow points downwards; each case adds one file to it.
std::vector<SourceFile> sound_tree() {
  return {
      parse_source("src/platform/utilities/export.h", "#pragma once\n"),
      parse_source("src/platform/geometry/point3.h", "#include \"platform/utilities/export.h\"\n"),
      parse_source("src/progress/break_handler.h", "#include \"platform/utilities/export.h\"\n"),
      parse_source("src/mesh/tri_block.h", "#include <vector>\n#include \"progress/break_handler.h\"\nclass trUndo;\n"),
      parse_source("src/mesh/journal.cpp", "#include \"mesh/tri_block.h\"\n#include \"undo/undo.h\"\n"),
      parse_source("src/undo/undo.h", "#include \"mesh/tri_block.h\"\n"),
      parse_source("src/formats/tri_read.h", "#include \"mesh/tri_block.h\"\n"),
      parse_source("src/analysis/sick.cpp", "#include \"mesh/tri_block.h\"\n"),
      parse_source("src/boundaries/cycle_array.h", "#include \"undo/undo.h\"\n#include \"formats/tri_read.h\"\n"),
      parse_source("src/mendexlib.h", "#include \"boundaries/cycle_array.h\"\n"),
      parse_source("apps/mendex/main.cpp", "#include <mendexlib.h>\n#include <CLI/CLI.hpp>\n#include \"report.h\"\n"),
  };
}

}  // namespace

// The project's own files. The minimum guards against a check that looks at nothing, say because a folder was renamed.
TEST(IncludeLadder, EveryArrowOfTheProjectPointsDownwards) {
  const std::vector<SourceFile> files = read_sources(MENDEX_SOURCE_DIR, {"src", "apps", "examples"});
  std::size_t includes = 0;
  for (const SourceFile& file : files) includes += file.includes.size();
  EXPECT_GE(files.size(), 10u);
  EXPECT_GE(includes, 30u);
  EXPECT_EQ(joined(ladder_faults(files)), "");
}

TEST(IncludeLadder, AcceptsASoundTree) { EXPECT_EQ(joined(ladder_faults(sound_tree())), ""); }

TEST_P(WrongIncludes, AreReportedOnce) {
  std::vector<SourceFile> files = sound_tree();
  files.push_back(parse_source(GetParam().path, std::string("#include <vector>\n") + GetParam().line + "\n"));
  const std::vector<std::string> faults = ladder_faults(files);
  ASSERT_EQ(faults.size(), 1u) << joined(faults);
  EXPECT_EQ(faults[0].find(std::string(GetParam().path) + " includes "), 0u) << faults[0];
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongIncludes,
    testing::Values(
        WrongInclude{"MeshUsesFormats", "src/mesh/node.cpp", "#include \"formats/tri_read.h\""},
        WrongInclude{"MeshHeaderUsesTheJournal", "src/mesh/node.h", "#include \"undo/undo.h\""},
        WrongInclude{"SecondMeshSourceUsesTheJournal", "src/mesh/node.cpp", "#include \"undo/undo.h\""},
        WrongInclude{"SiblingsAtOneHeight", "src/analysis/thin.cpp", "  #  include \"undo/undo.h\"  // note"},
        WrongInclude{"PlatformUsesMesh", "src/platform/common/filter.h", "#include \"mesh/tri_block.h\""},
        WrongInclude{"PlatformUsesProgress", "src/platform/surface/fit.cpp", "#include \"progress/break_handler.h\""},
        WrongInclude{"UtilitiesUseGeometry", "src/platform/utilities/ut.h", "#include \"platform/geometry/point3.h\""},
        WrongInclude{"BracketsDoNotHide", "src/progress/report.cpp", "#include <mesh/tri_block.h>"},
        WrongInclude{"LibraryUsesUmbrella", "src/boundaries/fill.cpp", "#include \"mendexlib.h\""},
        WrongInclude{"PathFromOwnFolder", "src/mesh/node.cpp", "#include \"tri_block.h\""},
        WrongInclude{"PathUpwards", "src/mesh/node.cpp", "#include \"../mesh/tri_block.h\""},
        WrongInclude{"ThirdParty", "src/mesh/node.cpp", "#include <nlohmann/json.hpp>"},
        WrongInclude{"EigenInAHeader", "src/platform/surface/fit.h", "#include <Eigen/Dense>"},
        WrongInclude{"EigenOutsideFitting", "src/mesh/node.cpp", "#include <Eigen/Dense>"},
        WrongInclude{"UnknownFolder", "src/extras/fit.cpp", "#include \"mesh/tri_block.h\""},
        WrongInclude{"ProgramUsesTheInside", "apps/mendex/weld.cpp", "#include \"mesh/tri_block.h\""},
        WrongInclude{"ExampleUsesTheInside", "examples/weld.cpp", "#include <mesh/tri_block.h>"}),
    case_name);
