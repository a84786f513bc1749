// The workflow for clusters, run here.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "apps/process.h"
#include "apps/test_files.h"
#include "build_paths.h"

namespace {

using Json = nlohmann::json;

bool is_installed(const std::string& program) {
  std::istringstream path(std::getenv("PATH") == nullptr ? "" : std::getenv("PATH"));
  for (std::string folder; std::getline(path, folder, ':');) {
    if (std::filesystem::exists(folder + "/" + program)) return true;
  }
  return false;
}

}  // namespace

// Good and damaged files end in reports, folders are kept, and a second run has nothing left to do.
TEST(Workflow, RepairsAFolder) {
  if (!is_installed("snakemake")) GTEST_SKIP() << "snakemake is not installed";
  const TestFolder folder;
  std::filesystem::create_directories(folder.path("meshes/deep"));
  std::filesystem::copy(sample("bracket_soup.stl"), folder.path("meshes/good one.stl"));
  std::filesystem::copy(sample("open_box.ast"), folder.path("meshes/deep/box.ast"));
  folder.write("meshes/text.stl", "no mesh at all");
  const std::string program = folder.write("program", std::string("#!/bin/sh\nshift\nexec ") + MENDEX_BATCH_PROBE + " --program " + MENDEX_PROGRAM + " \"$@\"\n");
  chmod(program.c_str(), 0755);
  ProcessSetup setup;
  setup.program = "/usr/bin/env";
  setup.folder = folder.path("");
  setup.environment = {{"HOME", folder.path("")}, {"XDG_CACHE_HOME", folder.path("cache")}};
  setup.arguments = {"snakemake", "-s", MENDEX_SOURCE_DIR "/examples/batch/Snakefile", "--cores", "2", "--keep-going",
                     "--config", "inputs=meshes", "outputs=fixed", "mendex=" + program};
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
