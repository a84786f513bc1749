// `mendex shell` and `mendex run`: what commands do, how scripts end, undo, interruption, lines that nobody meant.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <fstream>
#include <random>
#include <thread>

#include "apps/process.h"
#include "apps/test_files.h"
#include "failure.h"
#include "script_words.h"

namespace {

// A script in a folder with the models that it names.
class ScriptTest {
 public:
  ScriptTest() {
    for (const char* name : {"torus_collapsed.stl", "open_box.ast", "bracket_soup.stl", "gap_sphere.stl"}) {
      folder_.write(name, contents_of_file(sample(name)));
    }
  }

  const TestFolder& folder() const { return folder_; }

  ProcessResult run(const std::string& script, const std::vector<std::string>& options = {}) const {
    folder_.write("script.mx", script);
    std::vector<std::string> arguments = {"run", "script.mx"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    ProcessSetup setup = mendex_setup(arguments);
    setup.folder = folder_.path("");
    return run_process(setup);
  }

  // What a script prints that is to succeed.
  std::string output(const std::string& script) const {
    const ProcessResult result = run(script);
    EXPECT_EQ(result.exit_code, 0) << script << "\n" << result.errors;
    EXPECT_EQ(result.errors, "") << script;
    return result.output;
  }

 private:
  TestFolder folder_;
};

const std::string torus = "read torus_collapsed.stl\n";
const std::string box = "read open_box.ast\nundup\n";

}  // namespace

TEST(ScriptWords, AreSplitAsShellsDo) {
  using Words = std::vector<std::string>;
  EXPECT_EQ(words_of("  undup\t1e-6  # not 1e-5"), (Words{"undup", "1e-6"}));
  EXPECT_EQ(words_of("read 'a b.stl' \"c \\\"d\\\".stl\" e\\ f a#b ''"), (Words{"read", "a b.stl", "c \"d\".stl", "e f", "a#b", ""}));
  EXPECT_TRUE(words_of(" \r").empty());
  EXPECT_THROW(words_of("read 'a"), Failure);
}

// The example of every command runs, or fails for a reason of the mesh.
TEST(MendexRun, KnowsEachExampleOfItsHelp) {
  const ScriptTest test;
  test.folder().write("part.stl", contents_of_file(sample("open_box.ast")));
  test.folder().write("lid.stl", contents_of_file(sample("bracket_soup.stl")));
  test.folder().write("weld.mx", "undup\n");
  std::istringstream help(test.output("help\n"));
  int commands = 0;
  for (std::string line; std::getline(help, line);) {
    if (line.size() < 3 || line.compare(0, 2, "  ") != 0 || line[2] == ' ') continue;
    const std::string name = line.substr(2, line.find(' ', 2) - 2);
    const std::string explained = test.output("help " + name);
    const std::size_t at = explained.find("For example:\n  ");
    ASSERT_NE(at, std::string::npos) << name;
    const std::string example = explained.substr(at + 15);
    EXPECT_EQ(example.compare(0, name.size(), name), 0) << name;
    const bool needs_records = name == "undo" || name == "redo";
    const ProcessResult result = test.run("read part.stl\nundup\n" + std::string(needs_records ? "reverse\nreverse\n" : "") +
                                          (name == "redo" ? "undo\n" : "") + "select all\n" + example);
    EXPECT_EQ(result.exit_code, 0) << example << result.errors;
    ++commands;
  }
  EXPECT_GE(commands, 45);
}

TEST(MendexRun, PrintsResultsOnlyAndWritesWhatItMade) {
  const ScriptTest test;
  EXPECT_EQ(test.output("# nothing but a comment\n\n" + box + "select all\ncap 5\nwrite 'closed box.stl'"), "");
  const std::string path = test.folder().path("closed box.stl");
  EXPECT_EQ(run_mendex({"check", path}).exit_code, 0);
  EXPECT_EQ(test.output(box + "boundaries\n"), "  0            10 edges, length 100, round (15 10 10)\n  1 boundary\n");
  EXPECT_EQ(test.output(box + "select 0\nboundaries\nunselect all\n").front(), '*');
  EXPECT_EQ(test.output(box + "section z 5\nfind thin\nlimits thin 0.9\nfind thin\nverbose\n").substr(0, 49),
            "1 polyline, 1 closed, length 100\n0 triangles\n32 t");
  EXPECT_NE(test.output(torus + "info full\n").find("Min element height"), std::string::npos);
}

// One call, one result: what is told apart is which rule an edit follows.
TEST(MendexRun, EditsAsTheActionsDo) {
  const ScriptTest test;
  const auto counts = [&](const std::string& script) {
    const std::string text = test.output(script + "\ninfo\n");
    const auto number = [&text](const char* label) { return std::stoi(text.substr(text.find(label) + std::string(label).size())); };
    return std::array<int, 3>{number("Element count: "), number("Node count: "), number("Boundary count: ")};
  };
  using Counts = std::array<int, 3>;
  EXPECT_EQ(counts(torus), (Counts{391, 1173, 391}));
  EXPECT_EQ(counts(torus + "undup"), (Counts{320, 160, 0}));
  EXPECT_EQ(counts(torus + "undup\nundo"), (Counts{391, 1173, 391}));
  EXPECT_EQ(counts(torus + "undup\nundo\nredo"), (Counts{320, 160, 0}));
  EXPECT_EQ(counts(box), (Counts{32, 22, 1}));
  EXPECT_EQ(counts(box + "select all\nfill"), (Counts{42, 23, 0}));
  EXPECT_EQ(counts(box + "select all\ncap 5"), (Counts{66, 35, 0}));
  EXPECT_EQ(counts(box + "select all\ncap_ext auto\nundo"), (Counts{32, 22, 1}));
  const std::string nodes = test.output(box + "boundaries 0\n");
  std::istringstream picks(nodes.substr(nodes.find("nodes") + 5));
  int first = 0, second = 0, third = 0;
  picks >> first >> second >> third;
  const std::string arc = box + "select 0 at " + std::to_string(first) + " " + std::to_string(third) + "\nfill";
  EXPECT_EQ(counts(arc), (Counts{33, 22, 1}));
  EXPECT_EQ(counts(arc + "\nundo all"), (Counts{32, 96, 32}));
  EXPECT_EQ(counts(torus + "undup\nselect all\nfill\ncap 5\ncap_ext"), (Counts{320, 160, 0}));
  EXPECT_EQ(counts(box + "slice z below 5\nselect 0\nunselect 0"), counts(box + "transform scale 2\nslice z below 10"));
  EXPECT_EQ(counts(box + "append bracket_soup.stl\nundo"), (Counts{32, 22, 1}));
  EXPECT_EQ(counts(box + "delete thin 0.9"), (Counts{0, 22, 0}));
  EXPECT_EQ(counts("read gap_sphere.stl\nundup\nauto_stitch multi 0.001 0.5 0.05 passes 5")[2], 0);
}

// The search for what can be undone is a search of its own: check leaves the history as it is.
TEST(MendexRun, ChecksWithoutTouchingTheHistory) {
  const ScriptTest test;
  const std::string script = box + "reverse\nundo\n";
  EXPECT_EQ(test.output(script + "history\n"), [&] {
    const std::string text = test.output(script + "check\nhistory\n");
    return text.substr(text.find("FILE: "));
  }());
  EXPECT_EQ(test.run(box + "check strict\n").exit_code, 1);
  EXPECT_EQ(test.run(box + "select all\ncap 5\ncheck strict\n").exit_code, 0);
}

// Files of each format are appended within an undo bracket like any edit.
TEST(MendexRun, TakesBackWhatWasAppended) {
  const ScriptTest test;
  for (const char* extension : {"mnx", "mes", "tri", "stl", "ast", "kvx"}) {
    const std::string added = std::string("added.") + extension;
    test.output("read bracket_soup.stl\nundup\nwrite " + added + "\n");
    const std::string plain = test.output(box + "info full\nfind overhanging\n");
    EXPECT_EQ(test.output(box + "append " + added + "\nundo\ninfo full\nfind overhanging\n"), plain) << extension;
    EXPECT_NE(test.output(box + "append " + added + "\nundo\nredo\ninfo full\nfind overhanging\n"), plain) << extension;
  }
}

TEST(MendexRun, TellsErrorsWithTheirLineAndCode) {
  const ScriptTest test;
  const struct {
    const char* line;
    int code;
    const char* told;
  } cases[] = {
      {"frobnicate 1", 2, "there is no command 'frobnicate'"},
      {"undup -1", 2, "usage: undup [TOL]"},
      {"undup 1e999", 2, "is not a tolerance"},
      {"undup 1 2", 2, "what is '2' for?"},
      {"swap 0.1 99999999999", 2, "is not a whole number"},
      {"slice q above 1", 2, "'q' is none of x, y, z"},
      {"transform scale 0", 2, "flattens"},
      {"auto_stitch multi 0 1 1e-300", 2, "10,000 steps"},
      {"select 7", 2, "there is no boundary 7"},
      {"read 'torus", 2, "is not closed"},
      {"write x.nothing", 2, "cannot tell the format"},
      {"fill", 1, "no boundary is selected"},
      {"undo 5", 1, "1 operation can be undone"},
      {"read nowhere.stl", 3, "nowhere.stl: "},
      {"read script.mx", 3, "script.mx: "},
      {"run nowhere.mx", 3, "nowhere.mx: "},
      {"write no/folder/x.stl", 4, "no/folder/x.stl: "},
  };
  for (const auto& c : cases) {
    const ProcessResult result = test.run(box + c.line + "\ninfo\n");
    EXPECT_EQ(result.exit_code, c.code) << c.line;
    EXPECT_EQ(result.errors.compare(0, 13, "script.mx:3: "), 0) << c.line << ": " << result.errors;
    EXPECT_NE(result.errors.find(c.told), std::string::npos) << c.line << ": " << result.errors;
    EXPECT_EQ(result.output, "") << c.line;
  }
  const ProcessResult all = test.run("undo\nread nowhere.stl\nfoo\n" + box + "boundaries\n", {"--keep-going"});
  EXPECT_EQ(all.exit_code, 3);
  EXPECT_EQ(std::count(all.errors.begin(), all.errors.end(), '\n'), 3);
  EXPECT_NE(all.output.find("1 boundary"), std::string::npos);
}

// A file that is not there, or no mesh, leaves mesh and history alone.
TEST(MendexRun, KeepsTheMeshWhenAFileCannotBeRead) {
  const ScriptTest test;
  test.folder().write("no.stl", "no mesh");
  const ProcessResult result = test.run(box + "read no.stl\nread nowhere.stl\nundo\nboundaries\nwrite no/folder.stl\n", {"--keep-going"});
  EXPECT_NE(result.output.find("32 boundaries"), std::string::npos) << result.output;
  EXPECT_EQ(result.exit_code, 4);
}

// All selected holes are closed, or none: what was begun is taken back, and the selection is as before.
TEST(MendexRun, TakesBackAnEditThatFails) {
  const ScriptTest test;
  const ProcessResult result = test.run(box + "select all\ncap 0.00001\nhistory\nboundaries\n", {"--keep-going"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_NE(result.errors.find("script.mx:4: a hole cannot be capped: "), std::string::npos) << result.errors;
  EXPECT_EQ(result.output.find("cap"), std::string::npos);
  EXPECT_NE(result.output.find("* 0 "), std::string::npos) << result.output;
}

TEST(MendexRun, ReadsFromAPipeAndFromScriptsWithinScripts) {
  const ScriptTest test;
  ProcessSetup setup = mendex_setup({"shell", "open_box.ast"});
  setup.folder = test.folder().path("");
  setup.input_file = test.folder().write("input", "undup\nboundaries\nundup x\n");
  const ProcessResult result = run_process(setup);
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_NE(result.output.find("1 boundary"), std::string::npos);
  EXPECT_EQ(result.errors.compare(0, 17, "standard input:3:"), 0) << result.errors;
  test.folder().write("inner.mx", "boundaries\nquit\nnonsense\n");
  EXPECT_NE(test.output(box + "run inner.mx\nsection z 5\n").find("1 polyline"), std::string::npos);
  test.folder().write("endless.mx", "run endless.mx\n");
  const ProcessResult endless = test.run("run endless.mx\n", {"--keep-going"});
  EXPECT_EQ(endless.exit_code, 2);
  EXPECT_NE(endless.errors.find("16 deep"), std::string::npos);
}

// Whatever stands in a script, it ends with one of the codes.
TEST(MendexRun, SurvivesScriptsThatNobodyMeant) {
  const ScriptTest test;
  EXPECT_EQ(test.run(std::string(100000, 'a')).exit_code, 2);
  EXPECT_EQ(test.run(std::string("undup\0x", 7), {"--keep-going"}).exit_code, 2);
  EXPECT_EQ(test.run("select" + [] {
    std::string many;
    for (int k = 0; k < 9000; ++k) many += " 99999";
    return many;
  }()).exit_code, 2);
  const std::vector<std::string> pieces = {
      "read", "write", "undup", "open_box.ast", "torus_collapsed.stl", "select", "all", "cap", "fill", "undo", "redo", "1", "-1", "0.001",
      "1e300", "1e-300", "nan", "99999999", "delete", "small", "slice", "z", "above", "transform", "scale", "turn", "cap_ext", "auto",
      "curved", "history", "staple", "orient", "swap", "'", "\"", "#", "\\", "\xff\xfe", "\x1b[2J", "\n", "\n", "\n", "undomode", "off",
      "append", "renumber", "reverse", "info", "cancelling"};
  int effective = 0;
  for (unsigned seed = 1; seed <= 12; ++seed) {
    std::mt19937 random(seed);
    std::string script = seed % 2 == 0 ? torus : box;
    for (int k = 0; k < 400; ++k) script += pieces[random() % pieces.size()] + (random() % 8 == 0 ? "\n" : " ");
    const ProcessResult result = test.run(script, {"--keep-going"});
    EXPECT_TRUE(result.exit_code >= 1 && result.exit_code <= 4) << seed << ": " << result.exit_code;
    EXPECT_EQ(result.errors.find('\x1b'), std::string::npos) << seed;
    effective += result.errors.size() > 1000;
  }
  EXPECT_GE(effective, 10);
}

// Whoever reads the results must not take half of them for all.
TEST(MendexRun, EndsWhenItsResultsReachNobody) {
  const ScriptTest test;
  test.folder().write("script.mx", "help\nwrite never.stl\n");
  ProcessSetup setup = mendex_setup({"run", "script.mx"});
  setup.folder = test.folder().path("");
  setup.output_file = "/dev/full";
  EXPECT_EQ(run_process(setup).exit_code, 4);
  EXPECT_FALSE(std::ifstream(test.folder().path("never.stl")).good());
}

TEST(MendexRun, StopsAtASignal) {
  const ScriptTest test;
  const std::string pipe = test.folder().path("pipe");
  mkfifo(pipe.c_str(), 0600);
  test.folder().write("script.mx", "read pipe\nwrite never.stl\n");
  ProcessSetup setup = mendex_setup({"run", "script.mx", "--keep-going"});
  setup.folder = test.folder().path("");
  Process process(setup);
  process.wait_until_it_catches(SIGINT);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  process.send_signal(SIGINT);
  const ProcessResult result = process.wait();
  EXPECT_EQ(result.exit_code, 6);
  EXPECT_EQ(result.errors, "script.mx:1: pipe: interrupted\n");
  EXPECT_FALSE(std::ifstream(test.folder().path("never.stl")).good());
}

// Typed on a terminal: Ctrl-C takes back the running edit and leaves the shell; the history is kept for the next time.
TEST(MendexShell, IsInterruptedAndGoesOn) {
  const ScriptTest test;
  ProcessSetup setup = mendex_setup({"shell", "gap_sphere.stl"});
  setup.folder = test.folder().path("");
  setup.has_terminal = setup.is_typed_to = true;
  setup.environment = {{"XDG_STATE_HOME", test.folder().path("state")}, {"TERM", "xterm"}};
  Process process(setup);
  if (!process.has_terminal()) GTEST_SKIP() << "no terminal";
  ASSERT_TRUE(process.waits_for("mendex> "));
  process.type("append torus_collapsed.stl\n");
  ASSERT_TRUE(process.waits_for("mendex> "));
  process.type("garbage\x03");
  ASSERT_TRUE(process.waits_for("mendex> "));
  process.type("transform move 1 0 0\n");
  ASSERT_TRUE(process.waits_for("mendex> "));
  process.type("auto_stitch multi 1e-12 1e-9 1e-13 target 1000\n");  // merges copies at once, and then goes on for long
  ASSERT_TRUE(process.waits_for("%"));
  process.type("\x03");
  ASSERT_TRUE(process.waits_for("AUTO UNDOING"));
  ASSERT_TRUE(process.waits_for("interrupted"));
  ASSERT_TRUE(process.waits_for("mendex> "));
  process.type("history\n");
  ASSERT_TRUE(process.waits_for("  2  transform move 1 0 0               [1845 nodes, 0 elems]"));
  ASSERT_TRUE(process.waits_for("mendex> "));
  process.type("undo al\t\n");
  ASSERT_TRUE(process.waits_for("mendex> "));
  process.type("quit\n");
  ASSERT_TRUE(process.waits_for("not written"));
  ASSERT_TRUE(process.waits_for("mendex> "));
  process.type("quit\n");
  const ProcessResult result = process.wait();
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.errors.find("3  auto_stitch"), std::string::npos);
  const std::string kept = contents_of_file(test.folder().path("state/mendex/history"));
  EXPECT_TRUE(kept.empty() || kept.find("auto_stitch") != std::string::npos);
}
