// What the documents promise: samples that can be made again, an example that is the one that is compiled, a workflow that runs.

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "apps/reports.h"
#include "build_paths.h"

namespace {

bool is_installed(const std::string& program) {
  std::istringstream path(std::getenv("PATH") == nullptr ? "" : std::getenv("PATH"));
  for (std::string folder; std::getline(path, folder, ':');) {
    if (std::filesystem::exists(folder + "/" + program)) return true;
  }
  return false;
}

}  // namespace

TEST(Samples, AreWhatTheGeneratorMakes) {
  const TestFolder folder;
  ProcessSetup setup;
  setup.program = MENDEX_MAKE_SAMPLES;
  setup.arguments = {folder.path("")};
  ASSERT_EQ(run_process(setup).exit_code, 0);
  EXPECT_EQ(folder.names().size(), 6u);
  for (const std::string& name : folder.names()) {
    EXPECT_TRUE(contents_of_file(folder.path(name)) == contents_of_file(sample(name))) << name;
  }
}

// The example in the README is examples/weld.cpp, which is compiled and run.
TEST(Readme, ShowsTheExampleThatIsCompiled) {
  const std::string readme = contents_of_file(MENDEX_SOURCE_DIR "/README.md");
  const std::string opening = "```cpp\n";
  const std::size_t begin = readme.find(opening);
  ASSERT_NE(begin, std::string::npos);
  const std::string shown =
      readme.substr(begin + opening.size(), readme.find("```", begin + 3) - begin - opening.size());
  const std::string compiled = contents_of_file(MENDEX_SOURCE_DIR "/examples/weld.cpp");
  EXPECT_EQ(shown, compiled.substr(compiled.find("#include")));
}

// What the README shows is what the program prints.
TEST(Readme, ShowsRealOutput) {
  const TestFolder folder;
  std::filesystem::create_directory_symlink(MENDEX_SOURCE_DIR "/samples", folder.path("samples"));
  const std::string readme = contents_of_file(MENDEX_SOURCE_DIR "/README.md");
  const std::vector<Arguments> commands = {
      {"repair", "samples/broken_ring.stl", "-o", "sound.stl"},
      {"weld", "samples/torus_collapsed.stl", "-o", "fixed.stl"},
      {"check", "samples/open_box.ast"},
      {"cap", "samples/open_box.ast", "-o", "closed.stl", "--spacing", "5"},
      {"slice", "samples/bracket_soup.stl", "--at", "12.5", "--keep", "below", "--cap", "-o", "lower.stl"},
      {"section", "samples/bracket_soup.stl", "--at", "2.5,12.5"},
      {"info", "samples/bracket_soup.stl"},
      {"info", "samples/bracket_soup.stl", "--json"},
  };
  for (const Arguments& command : commands) {
    ProcessSetup setup = mendex_setup(command);
    setup.folder = folder.path("");
    const std::string output = run_process(setup).output;
    expect_text(readme, "```\n" + output + "```\n");
  }
}

// Good and damaged files end in reports, folders are kept, and a second run has nothing left to do.
TEST(Workflow, RepairsAFolder) {
  if (!is_installed("snakemake")) GTEST_SKIP() << "snakemake is not installed";
  const TestFolder folder;
  std::filesystem::create_directories(folder.path("meshes/deep"));
  std::filesystem::copy(sample("bracket_soup.stl"), folder.path("meshes/good one.stl"));
  std::filesystem::copy(sample("open_box.ast"), folder.path("meshes/deep/box.ast"));
  folder.write("meshes/text.stl", "no mesh at all");
  ProcessSetup setup;
  setup.program = "/usr/bin/env";
  setup.folder = folder.path("");
  setup.environment = {{"HOME", folder.path("")}, {"XDG_CACHE_HOME", folder.path("cache")}};
  setup.arguments = {"snakemake", "-s", MENDEX_SOURCE_DIR "/examples/batch/Snakefile", "--cores", "2", "--keep-going",
                     "--config", "inputs=meshes", "outputs=fixed", "mendex=" MENDEX_PROGRAM};
  const ProcessResult first = run_process(setup);
  EXPECT_EQ(first.exit_code, 0) << first.errors;
  std::istringstream lines(contents_of_file(folder.path("fixed/reports.jsonl")));
  std::vector<Json> reports;
  for (std::string line; std::getline(lines, line);) reports.push_back(Json::parse(line));
  ASSERT_EQ(reports.size(), 4u) << first.errors;
  EXPECT_EQ(reports[0]["exit"], 0);
  EXPECT_EQ(reports[1]["exit"], 0);
  EXPECT_EQ(reports[2]["exit"], 3);
  EXPECT_EQ(reports[3], Json::parse(R"({"files": 3, "exits": {"0": 2, "3": 1}})"));
  EXPECT_TRUE(std::filesystem::exists(folder.path("fixed/deep/box.ast")));
  EXPECT_TRUE(std::filesystem::exists(folder.path("fixed/good one.stl")));
  const ProcessResult second = run_process(setup);
  EXPECT_NE((second.output + second.errors).find("Nothing to be done"), std::string::npos) << second.errors;
}
