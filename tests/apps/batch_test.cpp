// Many files at once: which are taken, that none harms another, what is told of each, and what a stop leaves behind.

#include <gtest/gtest.h>

#include <signal.h>

#include <chrono>
#include <filesystem>
#include <sstream>

#include "apps/process.h"
#include "apps/test_files.h"
#include "build_paths.h"
#include "support/json_document.h"

namespace {

using Names = std::vector<std::string>;

// A job that says so of itself and ends well.
constexpr const char* good_job = "echo '{\"schema\":\"mendex.report/1\",\"exit\":0,\"error\":null}'; echo made > \"$1\"\n";

ProcessSetup batch_setup(const TestFolder& folder, Names words) {
  ProcessSetup setup;
  setup.program = MENDEX_BATCH_PROBE;
  setup.folder = folder.path("");
  setup.arguments = std::move(words);
  return setup;
}

std::vector<Json> lines_of(const std::string& text) {
  std::vector<Json> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(Json::parse(line));
  return lines;
}

struct BatchResult {
  int exit_code;
  std::vector<Json> reports;
  Json summary;
  std::string errors;
  double seconds;

  Json values(const char* key) const {
    std::vector<Json> list;
    for (const Json& report : reports) list.push_back(report.value(key, "missing"));
    return Json::array(list);
  }
};

BatchResult run_batch(const TestFolder& folder, Names words) {
  words.insert(words.end(), {"--json", "--out-dir", "out"});
  const auto start = std::chrono::steady_clock::now();
  const ProcessResult result = run_process(batch_setup(folder, words));
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  BatchResult batch{result.exit_code, lines_of(result.output), nullptr, result.errors, time.count()};
  if (!batch.reports.empty()) {
    batch.summary = batch.reports.back();
    batch.reports.pop_back();
  }
  return batch;
}

Names names_in(const std::string& folder) {
  Names names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) names.push_back(entry.path().lexically_relative(folder).string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

// Each way to end has its code; a job's own report is passed on, and one is made for a job that left none.
TEST(MendexBatch, EveryEndHasItsCodeAndItsReport) {
  struct Case {
    const char* script;
    int code;
    const char* error;
    const char* counted_as;
  };
  const Case cases[] = {
      {good_job, 0, nullptr, "sound"},
      {"echo '{\"steps\":[1],\"exit\":1,\"error\":null}'; exit 1", 1, nullptr, "defects_remain"},
      {"echo 'mendex: bad.stl: is damaged' >&2; exit 3", 3, "bad.stl: is damaged", "cannot_read"},
      {"echo '{\"exit\":5,\"error\":\"too far\"}'; exit 5", 5, "too far", "budget_passed"},
      {"exit 7", 7, "", "out_of_memory"},
      {"kill -KILL $$", 7, "killed, most likely for want of memory", "out_of_memory"},
      {"echo '{\"exit\":0}'; kill -SEGV $$", 3, "broke down: Segmentation fault", "cannot_read"},
      {"echo '{\"exit\":0}'; exit 6", 6, nullptr, "interrupted"},
      {"echo 'half a {'; exit 1", 1, "", "defects_remain"},
      {"exit 99", 3, "ended with code 99", "cannot_read"},
  };
  const TestFolder folder;
  Names words = {"--jobs", "3"};
  std::map<std::string, int> expected;
  for (std::size_t k = 0; k < std::size(cases); ++k) {
    words.push_back("job" + std::to_string(k) + ".stl");
    folder.write(words.back(), cases[k].script);
    ++expected[cases[k].counted_as];
  }
  const BatchResult result = run_batch(folder, words);
  ASSERT_EQ(result.reports.size(), std::size(cases)) << result.errors;
  for (std::size_t k = 0; k < std::size(cases); ++k) {
    const Json& report = result.reports[k];
    EXPECT_EQ(report["exit"], cases[k].code) << report;
    const bool is_null = cases[k].error == nullptr || *cases[k].error == '\0';
    EXPECT_EQ(report["error"], is_null ? Json(nullptr) : Json(cases[k].error)) << report;
  }
  EXPECT_EQ(result.reports[1]["steps"], Json::parse("[1]"));
  const Json& made = result.reports[2];
  EXPECT_EQ(made["schema"], "mendex.report/1");
  const std::string bytes = std::to_string(std::filesystem::file_size(folder.path("job2.stl")));
  EXPECT_EQ(made["input"], Json::parse(R"({"path": "job2.stl", "format": null, "complete": null, "bytes": )" + bytes + "}"));
  for (const char* key : {"before", "defect_count", "budget", "after"}) EXPECT_TRUE(made.at(key).is_null()) << key;
  for (const auto& [key, count] : expected) EXPECT_EQ(result.summary[key], count) << key;
  EXPECT_EQ(result.summary["files"], std::size(cases));
  EXPECT_EQ(result.summary["exit"], 7);
  EXPECT_EQ(result.exit_code, 7);
  EXPECT_EQ(names_in(folder.path("out")), Names{"job0.stl"});
}

// The first job ends last; its report still comes first. Three at a time take the time of the longest.
TEST(MendexBatch, ReportsKeepTheOrderOfTheInputs) {
  const TestFolder folder;
  for (int k = 0; k < 6; ++k) {
    folder.write("job" + std::to_string(k) + ".stl", std::string(k % 3 == 0 ? "sleep 1; " : "") + "echo '{\"number\":" + std::to_string(k) + "}'");
  }
  const BatchResult result = run_batch(folder, {"--jobs", "3", "job0.stl", "job1.stl", "job2.stl", "job3.stl", "job4.stl", "job5.stl"});
  EXPECT_EQ(result.values("number"), Json::parse("[0, 1, 2, 3, 4, 5]"));
  EXPECT_LT(result.seconds, 1.9);
  EXPECT_EQ(result.exit_code, 0);
}

// One that stops when it is asked to, one that does not, one that has started another: all end, and the rest is none the later.
TEST(MendexBatch, TimeIsLimitedForEachFile) {
  const TestFolder folder;
  folder.write("a.stl", "sleep 60");
  folder.write("b.stl", "trap '' INT; sleep 60 & echo $! > pid; touch \"out/.mendex-$$-abc\"; wait; wait; sleep 60");
  folder.write("c.stl", good_job);
  const BatchResult result = run_batch(folder, {"--jobs", "2", "--timeout", "0.5", "a.stl", "b.stl", "c.stl"});
  EXPECT_EQ(result.values("exit"), Json::parse("[6, 6, 0]"));
  EXPECT_EQ(result.reports[1]["error"], "timed out after 0.5 s");
  EXPECT_EQ(result.summary["timed_out"], 2);
  EXPECT_EQ(result.exit_code, 6);
  EXPECT_LT(result.seconds, 5.0);
  EXPECT_EQ(names_in(folder.path("out")), Names{"c.stl"});
  const int grandchild = std::stoi(contents_of_file(folder.path("pid")));
  EXPECT_TRUE(kill(grandchild, 0) != 0 || contents_of_file("/proc/" + std::to_string(grandchild) + "/stat").find(") Z ") != std::string::npos);
}

// Ctrl-C stops what runs and starts nothing more; every file is accounted for.
TEST(MendexBatch, InterruptionStopsTheChildren) {
  const TestFolder folder;
  folder.write("a.stl", good_job);
  folder.write("b.stl", "trap 'rm -f half; exit 6' INT; touch half; sleep 60 & wait");
  folder.write("c.stl", good_job);
  Process process(batch_setup(folder, {"--json", "--out-dir", "out", "a.stl", "b.stl", "c.stl"}));
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!std::filesystem::exists(folder.path("half")) && std::chrono::steady_clock::now() < deadline) usleep(2000);
  process.send_signal(SIGINT);
  const ProcessResult result = process.wait();
  EXPECT_EQ(result.exit_code, 6);
  const std::vector<Json> lines = lines_of(result.output);
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0]["exit"], 0);
  EXPECT_EQ(lines[1]["error"], "interrupted");
  EXPECT_EQ(lines[2]["error"], "not started: interrupted");
  EXPECT_EQ(lines[3]["not_started"], 1);
  EXPECT_FALSE(std::filesystem::exists(folder.path("half")));
}

// Where the folder takes nothing any more the others would fare no better; all else concerns one file.
TEST(MendexBatch, AResultThatCannotBeWrittenEndsTheBatchUnlessAsked) {
  const TestFolder folder;
  folder.write("a.stl", "exit 2");
  folder.write("c.stl", good_job);
  folder.write("b.stl", "exit 4");
  EXPECT_EQ(run_batch(folder, {"a.stl", "b.stl", "c.stl"}).values("exit"), Json::parse("[2, 4, 0]"));
  folder.write("b.stl", "rm -r out; exit 4");
  const BatchResult stopped = run_batch(folder, {"a.stl", "b.stl", "c.stl"});
  EXPECT_EQ(stopped.values("exit"), Json::parse("[2, 4, 4]"));
  EXPECT_EQ(stopped.reports[2]["error"], "not started, because of b.stl; see --keep-going");
  EXPECT_EQ(stopped.exit_code, 4);
  const BatchResult went_on = run_batch(folder, {"a.stl", "b.stl", "c.stl", "--keep-going"});
  EXPECT_EQ(went_on.values("exit"), Json::parse("[2, 4, 2]"));
}

TEST(MendexBatch, TakesFilesFoldersAndLists) {
  const TestFolder folder;
  std::filesystem::create_directories(folder.path("in/deep/er"));
  for (const char* name : {"in/b.stl", "in/a.STL", "in/c.xyz", "in/.d.stl", "in/deep/a.ast", "in/deep/er/b.stl", "single.stl", "@odd.stl"}) folder.write(name, good_job);
  folder.write("list", "single.stl\r\n\nin\n@odd.stl");
  const auto outputs = [&](const Names& words) {
    std::filesystem::remove_all(folder.path("out"));
    EXPECT_EQ(run_batch(folder, words).exit_code, 0);
    return names_in(folder.path("out"));
  };
  EXPECT_EQ(outputs({"in"}), (Names{"a.STL", "b.stl"}));
  EXPECT_EQ(outputs({"in/", "--recursive"}), (Names{"a.STL", "b.stl", "deep/a.ast", "deep/er/b.stl"}));
  EXPECT_EQ(outputs({"@list", "--suffix", "_ok"}), (Names{"@odd_ok.stl", "a_ok.STL", "b_ok.stl", "single_ok.stl"}));
  EXPECT_EQ(outputs({"in/c.xyz", "./@odd.stl"}), (Names{"@odd.stl", "c.stl"}));  // a format that is not written becomes STL
}

// Nothing is started where two results would be one file, where a result would be another job's input, or where nothing is to do.
TEST(MendexBatch, RefusesAtTheStart) {
  const TestFolder folder;
  std::filesystem::create_directories(folder.path("x"));
  std::filesystem::create_directories(folder.path("empty"));
  std::filesystem::create_directory_symlink("x", folder.path("y"));
  for (const char* name : {"a.stl", "a_ok.stl", "x/a.stl"}) folder.write(name, "touch started");
  folder.write("file", "");
  struct Case {
    Names words;
    int code;
    const char* message;
  };
  const Case cases[] = {
      {{"a.stl", "x/a.stl", "--out-dir", "out"}, 2, "'a.stl' and 'x/a.stl' would both be written to 'out/a.stl'"},
      {{"x/a.stl", "y/a.stl", "--suffix", "_ok"}, 2, "would both be written"},
      {{"a.stl", "./a.stl", "--in-place"}, 2, "would both be written"},
      {{"a.stl", "a_ok.stl", "--suffix", "_ok"}, 2, "'a.stl' would be written to 'a_ok.stl', which is an input itself"},
      {{"x/a.stl", "a.stl", "--out-dir", "y"}, 2, "would both be written"},
      {{"a.stl", "x/a.stl"}, 2, "--out-dir or --suffix"},
      {{"empty", "--out-dir", "out"}, 2, "no mesh file among the inputs"},
      {{"@nowhere", "--out-dir", "out"}, 3, "nowhere: cannot be read: No such file"},
      {{"@x", "--out-dir", "out"}, 3, "x: cannot be read: Is a directory"},
      {{"a.stl", "--suffix", "/../b"}, 2, "no slash"},
#ifndef __SANITIZE_ADDRESS__
      {{"a.stl", "--out-dir", "out", "--max-memory", "4M"}, 7, "memory"},
#endif
      {{"a.stl", "--out-dir", "file/out"}, 4, "cannot be made: Not a directory"},
  };
  for (const Case& c : cases) {
    const ProcessResult result = run_process(batch_setup(folder, c.words));
    EXPECT_EQ(result.exit_code, c.code) << c.message << result.errors;
    EXPECT_NE(result.errors.find(c.message), std::string::npos) << c.message << "\n" << result.errors;
    EXPECT_EQ(result.output, "");
  }
  EXPECT_FALSE(std::filesystem::exists(folder.path("started")));
  EXPECT_FALSE(std::filesystem::exists(folder.path("out")));
}

TEST(MendexBatch, TellsPeopleALineForEachFileAndASummary) {
  const TestFolder folder;
  folder.write("a.stl", good_job);
  folder.write("b.stl", "printf 'mendex: b.stl: is \\033[2Jbroken\\n' >&2; exit 3");
  const ProcessResult result = run_process(batch_setup(folder, {"a.stl", "b.stl", "missing.stl", "--suffix", "_ok"}));
  EXPECT_EQ(result.output.find("sound             a.stl -> a_ok.stl  ("), 0u) << result.output;
  EXPECT_NE(result.output.find("s): b.stl: is ?[2Jbroken\n"), std::string::npos) << result.output;
  EXPECT_NE(result.output.find("\n  files                     3\n  sound                     1\n"), std::string::npos) << result.output;
  EXPECT_NE(result.errors.find("mendex: b.stl: is ?[2Jbroken\n"), std::string::npos) << result.errors;
}

// The program itself as the jobs: sound files beside damaged ones, and memory that does not suffice.
TEST(MendexBatch, RunsTheProgramItself) {
  const TestFolder folder;
  folder.write("text.stl", "no mesh at all");
  std::filesystem::copy(sample("bracket_soup.stl"), folder.path("bracket.stl"));
  const Names words = {"--program", MENDEX_PROGRAM, "bracket.stl", "text.stl", sample("open_box.ast"), "gone.stl"};
  const BatchResult result = run_batch(folder, words);
  EXPECT_EQ(result.values("exit"), Json::parse("[0, 3, 0, 3]")) << result.errors;
  EXPECT_EQ(result.reports[0]["merged_nodes"], 512);
  EXPECT_NE(result.reports[3]["error"].get<std::string>().find("gone.stl: "), std::string::npos);
  EXPECT_EQ(names_in(folder.path("out")), (Names{"bracket.stl", "open_box.ast"}));
}

// The verb that takes many files passes its options on to the children, and what concerns one file only is refused.
TEST(MendexBatch, RepairsManyFiles) {
  const TestFolder folder;
  std::filesystem::create_directory(folder.path("in"));
  for (const char* name : {"bracket_soup.stl", "torus_collapsed.stl"}) std::filesystem::copy(sample(name), folder.path("in/") + name);
  folder.write("in/-odd.stl", "no mesh at all");
  const auto repair = [&](Names words) {
    words.insert(words.begin(), "repair");
    ProcessSetup setup = mendex_setup(words);
    setup.folder = folder.path("in");
    return run_process(setup);
  };
  const ProcessResult first = repair({".", "--out-dir", "../out", "--json", "--jobs", "2", "--skip", "orient,fill"});
  EXPECT_EQ(first.exit_code, 3) << first.errors;
  const std::vector<Json> reports = lines_of(first.output);
  ASSERT_EQ(reports.size(), 4u);
  EXPECT_EQ(reports[0]["exit"], 3);
  EXPECT_EQ(reports[1]["exit"], 0) << reports[1];
  EXPECT_EQ(reports[2]["exit"], 0) << reports[2];
  const auto result_of = [](const Json& report, const char* step) {
    for (const Json& each : report["steps"].elements()) {
      if (each["name"] == step) return each["result"].dump();
    }
    return std::string("none");
  };
  EXPECT_NE(result_of(reports[2], "orient"), result_of(reports[2], "weld"));
  EXPECT_EQ(names_in(folder.path("out")), (Names{"bracket_soup.stl", "torus_collapsed.stl"}));
  EXPECT_EQ(lines_of(repair({".", "--out-dir", "../out", "--json"}).output)[1]["exit"], 2);  // it is there
  EXPECT_EQ(lines_of(repair({".", "--out-dir", "../out", "--json", "-f"}).output)[1]["exit"], 0);
  EXPECT_EQ(repair({".", "--out-dir", "../out", "--json=file"}).exit_code, 2);
  EXPECT_EQ(repair({"a.stl", "b.stl", "-o", "c.stl"}).exit_code, 2);
  EXPECT_EQ(repair({".", "-n", "--only", "weld"}).exit_code, 3);
}

#ifndef __SANITIZE_ADDRESS__  // which needs more address space than any limit
TEST(MendexBatch, MemoryIsLimitedForEachFile) {
  const TestFolder folder;
  folder.write("big.stl", binary_stl(some_facets(700000)));
  folder.write("small.stl", binary_stl(some_facets(10)));
  const Names words = {"--program", MENDEX_PROGRAM, "--max-memory", "150M", "big.stl", "small.stl"};
  const BatchResult result = run_batch(folder, words);
  EXPECT_EQ(result.values("exit"), Json::parse("[7, 0]")) << result.errors;
  EXPECT_NE(result.reports[0]["error"].get<std::string>().find("out of memory: more than 150 MiB"), std::string::npos);
  EXPECT_EQ(names_in(folder.path("out")), Names{"small.stl"});
}

// Whatever size the memory has at which it runs out, the end is orderly: done or code 7, never a half result.
TEST(MendexMemory, RunsOutInAnOrderlyWay) {
  const TestFolder folder;
  const std::string in = folder.write("in.stl", binary_stl(some_facets(60000))), out = folder.path("out.stl");
  ASSERT_EQ(run_mendex({"weld", in, "-o", out}).exit_code, 0);
  const std::string whole = contents_of_file(out);
  int refused = 0, done = 0;
  for (int megabytes = 20; megabytes <= 84; megabytes += 4) {
    std::filesystem::remove(out);
    const ProcessResult result = run_mendex({"weld", in, "-o", out, "--max-memory", std::to_string(megabytes) + "M"});
    result.exit_code == 0 ? ++done : ++refused;
    if (result.exit_code == 0) {
      EXPECT_EQ(contents_of_file(out), whole) << megabytes;
      continue;
    }
    EXPECT_EQ(result.exit_code, 7) << megabytes << result.errors;
    EXPECT_NE(result.errors.find("out of memory: more than"), std::string::npos) << result.errors;
    EXPECT_EQ(folder.names(), Names{"in.stl"});
  }
  EXPECT_GE(refused, 3);
  EXPECT_GE(done, 3);
}
#endif

// One process by itself is told when its time is up, and ended when it does not listen.
TEST(MendexTime, IsLimitedForOneProcess) {
  const TestFolder folder;
  const ProcessResult told = run_process(batch_setup(folder, {"--hang", "0.1"}));
  EXPECT_EQ(told.exit_code, 6);
  EXPECT_EQ(told.errors, "mendex: timed out\n");
  EXPECT_EQ(run_process(batch_setup(folder, {"--hang", "0.1", "--deaf"})).exit_code, 6);
}

TEST(MendexMemory, SizesAreNumbersWithAUnit) {
  for (const char* wrong : {"", "0", "-1", "G", "1X", "1GB", "inf", "nan", "1e3", "0.0001", "9999999999G"}) {
    EXPECT_EQ(run_mendex({"--max-memory", wrong, "formats"}).exit_code, 2) << wrong;
  }
  for (const char* good : {"2G", "1.5G", "900000K", "1T", "2000000000"}) {
    EXPECT_EQ(run_mendex({"--max-memory", good, "formats"}).exit_code, 0) << good;
  }
}
