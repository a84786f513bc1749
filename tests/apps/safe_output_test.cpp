// Whatever goes wrong, the file that was to be replaced stays as it was and nothing is left beside it.

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "apps/reports.h"

namespace {

const std::string old_contents = "the only copy of something";

// A folder with a target and a pipe from which the program reads as slowly as the test wants.
class SlowWeld {
 public:
  SlowWeld() : pipe_(folder_.path("pipe")), target_(folder_.write("target.stl", old_contents)) {
    mkfifo(pipe_.c_str(), 0600);
    signal(SIGPIPE, SIG_IGN);  // the program may be gone before all is fed
  }

  ProcessSetup setup() const { return mendex_setup({"weld", pipe_, "-o", target_}); }

  // Opens the pipe, which waits for the program to do the same, and writes the beginning of a large file.
  void feed(int facets) {
    if (!input_.is_open()) {
      input_.open(pipe_, std::ios::binary);
      input_ << binary_stl({}, "", 1000000);
    }
    input_ << binary_stl(some_facets(facets)).substr(84) << std::flush;
  }

  void end_input() { input_.close(); }

  void expect_untouched() const {
    EXPECT_EQ(contents_of_file(target_), old_contents);
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"pipe", "target.stl"}));
  }

 private:
  TestFolder folder_;
  std::string pipe_;
  std::string target_;
  std::ofstream input_;
};

}  // namespace

TEST(MendexInterrupted, StopsWhileReadingAndLeavesTheTarget) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    SlowWeld weld;
    Process process(weld.setup());
    weld.feed(50);
    process.send_signal(number);
    weld.feed(1);
    const ProcessResult result = process.wait();
    EXPECT_EQ(result.exit_code, 6) << "signal " << number << ": " << result.errors;
    EXPECT_EQ(result.output, "");
    expect_text(result.errors, "interrupted\n");
    EXPECT_EQ(result.errors.find("damaged"), std::string::npos) << result.errors;
    weld.expect_untouched();
  }
}

// A file that waits for its first byte has nothing to poll: the signal must cut the wait short.
TEST(MendexInterrupted, StopsWhileWaitingForAPipeThatNobodyOpens) {
  const SlowWeld weld;
  Process process(weld.setup());
  process.wait_until_it_catches(SIGINT);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));  // for the short way from there to the pipe
  process.send_signal(SIGINT);
  EXPECT_EQ(process.wait().exit_code, 6);
  weld.expect_untouched();
}

// On a terminal a bar shows what goes on, and leaves nothing behind. It appears only when the work takes a while.
TEST(MendexProgress, IsShownOnATerminalAndErased) {
  SlowWeld weld;
  ProcessSetup setup = weld.setup();
  setup.has_terminal = true;
  setup.environment = {{"TERM", "xterm"}};
  Process process(setup);
  if (!process.has_terminal()) GTEST_SKIP() << "no terminal can be had: is /dev/pts mounted?";
  weld.feed(5000);
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  weld.feed(5000);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  weld.feed(5000);
  weld.end_input();
  const ProcessResult result = process.wait();
  EXPECT_EQ(result.exit_code, 0);  // the file is cut short, which is a warning
  for (const char* part : {"\rreading ", " [-----", "\r\033[Kmendex: warning: "}) expect_text(result.errors, part);
  EXPECT_EQ(run_mendex({"info", sample("bracket_soup.stl")}).errors, "");
}

TEST(MendexOutput, RefusesTargetsThatCannotBeReplaced) {
  const TestFolder folder;
  std::filesystem::create_directory(folder.path("folder.stl"));
  folder.write("file", "");
  mkfifo(folder.path("pipe.stl").c_str(), 0600);
  std::filesystem::create_symlink("loop.stl", folder.path("loop.stl"));
  std::filesystem::create_symlink("/dev/full", folder.path("full.stl"));
  const std::vector<std::string> names_before = folder.names();
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"missing/out.stl", "No such file or directory"},
      {"file/out.stl", "Not a directory"},
      {"folder.stl", "Is a directory"},
      {"pipe.stl", "it is not a regular file"},
      {"loop.stl", "Too many levels of symbolic links"},
      {"full.stl", "it is not a regular file"},
  };
  for (const auto& [name, message] : cases) {
    const std::string error = "mendex: " + folder.path(name) + ": cannot be written: " + message + "\n";
    expect_refused({"weld", sample("open_box.ast"), "-o", folder.path(name)}, {}, 4, error);
    expect_refused({"convert", sample("open_box.ast"), folder.path(name)}, {}, 4, error);
  }
  EXPECT_EQ(folder.names(), names_before);
}

// Being allowed to put a new file in the folder is not being allowed to replace a protected one.
TEST(MendexOutput, RespectsWriteProtection) {
  const TestFolder folder;
  const std::string target = folder.write("target.stl", old_contents);
  const auto exit_code_of_weld_to = [](const std::string& out) {
    ProcessSetup setup = mendex_setup({"weld", sample("open_box.ast"), "-o", out});
    setup.is_nobody = true;
    return run_process(setup).exit_code;
  };
  std::filesystem::permissions(target, std::filesystem::perms(0444));
  std::filesystem::permissions(folder.path(""), std::filesystem::perms(0777));
  const int on_protected_file = exit_code_of_weld_to(target);
  std::filesystem::permissions(folder.path(""), std::filesystem::perms(0555));
  const int in_protected_folder = exit_code_of_weld_to(folder.path("new.stl"));
  std::filesystem::permissions(folder.path(""), std::filesystem::perms(0755));
  if (on_protected_file == 127) GTEST_SKIP() << "the program is out of reach for other users";
  EXPECT_EQ(on_protected_file, 4);
  EXPECT_EQ(in_protected_folder, 4);
  EXPECT_EQ(contents_of_file(target), old_contents);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"target.stl"});
}

// A disk that fills up part of the way, played by a limit on the size of files: at every size below the whole the
// target stays.
TEST(MendexOutput, FullDiskLeavesTheTarget) {
  const TestFolder folder;
  const std::string target = folder.write("target.stl", old_contents);
  const std::string text_target = folder.write("target.ast", old_contents);
  for (const long limit : {0, 1, 83, 84, 100, 4096, 10283}) {
    for (const std::string& out : {target, text_target}) {
      ProcessSetup setup = mendex_setup({"-q", "weld", sample("bracket_soup.stl"), "-o", out});
      setup.file_size_limit = limit;
      EXPECT_EQ(run_process(setup).exit_code, 4) << "limit " << limit;
      EXPECT_EQ(contents_of_file(out), old_contents) << "limit " << limit;
    }
  }
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"target.ast", "target.stl"}));
}

TEST(MendexOutput, ResultsThatCannotBePrintedAreAFailure) {
  ProcessSetup setup = mendex_setup({"info", "--json", sample("bracket_soup.stl")});
  setup.output_file = "/dev/full";
  const ProcessResult result = run_process(setup);
  EXPECT_EQ(result.exit_code, 4);
  EXPECT_EQ(result.errors, "mendex: standard output: No space left on device\n");
}

TEST(MendexOutput, FollowsSymbolicLinksAndHonoursTheUmask) {
  const TestFolder folder;
  std::filesystem::create_directory(folder.path("deep"));
  std::filesystem::create_symlink("deep/real.stl", folder.path("link.stl"));
  const mode_t mask = umask(027);
  EXPECT_EQ(run_mendex({"weld", sample("bracket_soup.stl"), "-o", folder.path("link.stl")}).exit_code, 0);
  umask(mask);
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link.stl")));
  EXPECT_EQ(std::filesystem::file_size(folder.path("deep/real.stl")), 84u + 204u * 50u);
  EXPECT_EQ(std::filesystem::status(folder.path("deep/real.stl")).permissions(), std::filesystem::perms(0640));
}

// Numbers in files and in JSON keep their points where the user's language writes commas.
TEST(MendexLocale, NumbersDoNotFollowTheUsersLanguage) {
  const TestFolder folder;
  ProcessSetup make_locale;
  make_locale.program = "/usr/bin/localedef";
  make_locale.arguments = {"-i", "de_DE", "-f", "UTF-8", folder.path("de_DE.UTF-8")};
  run_process(make_locale);
  if (!std::filesystem::exists(folder.path("de_DE.UTF-8/LC_NUMERIC"))) GTEST_SKIP() << "no locale";
  ProcessSetup setup =
      mendex_setup({"weld", sample("gap_sphere.stl"), "-o", folder.path("out.ast"), "--tol", "0.002", "--json"});
  setup.environment = {{"LOCPATH", folder.path("")}, {"LC_ALL", "de_DE.UTF-8"}};
  const ProcessResult result = run_process(setup);
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_EQ(Json::parse(result.output)["after"]["nodes"], 114);
  EXPECT_EQ(contents_of_file(folder.path("out.ast")).find(','), std::string::npos);
}
