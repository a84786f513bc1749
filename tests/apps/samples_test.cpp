// What the documents promise: samples that can be made again, an example that is the one that is compiled, a corpus
// that is read.

#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "apps/process.h"
#include "apps/test_files.h"
#include "build_paths.h"

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
  const std::vector<std::vector<std::string>> commands = {
      {"repair", "samples/broken_ring.stl", "-o", "sound.stl"},
      {"weld", "samples/torus_collapsed.stl", "-o", "fixed.stl"},
      {"check", "samples/open_box.ast"},
      {"cap", "samples/open_box.ast", "-o", "closed.stl", "--spacing", "5"},
      {"slice", "samples/bracket_soup.stl", "--at", "12.5", "--keep", "below", "--cap", "-o", "lower.stl"},
      {"section", "samples/bracket_soup.stl", "--at", "2.5,12.5"},
      {"info", "samples/bracket_soup.stl"},
      {"info", "samples/bracket_soup.stl", "--json"},
  };
  for (const std::vector<std::string>& command : commands) {
    ProcessSetup setup = mendex_setup(command);
    setup.folder = folder.path("");
    const std::string output = run_process(setup).output;
    EXPECT_NE(readme.find("```\n" + output + "```\n"), std::string::npos) << output;
  }
}

// Real files, most of them broken: the program reads as many facets of each as there are.
TEST(Corpus, TheProgramReadsEveryFacet) {
  const char* corpus = std::getenv("MENDEX_CORPUS");
  if (corpus == nullptr) GTEST_SKIP() << "MENDEX_CORPUS is not set";
  const auto truth = nlohmann::json::parse(contents_of_file(std::string(corpus) + "/truth.json"));
  int checked = 0;
  for (const auto& [name, expected] : truth.items()) {
    const ProcessResult result = run_mendex({"info", "--json", std::string(corpus) + "/" + name});
    EXPECT_EQ(result.exit_code, 0) << name << ": " << result.errors;
    if (result.exit_code != 0) continue;
    const auto report = nlohmann::json::parse(result.output);
    EXPECT_EQ(report["elements"], expected["facets"]) << name;
    EXPECT_EQ(report["format"], expected["format"] == "ascii" ? "ASCII STL" : "binary STL") << name;
    EXPECT_EQ(report["complete"].get<bool>(),
              expected.value("facets_declared", expected["facets"]) == expected["facets"])
        << name;
    ++checked;
  }
  std::printf("[corpus] the program read %d models\n", checked);
  EXPECT_GT(checked, 0);
}
