// What tells people how the program is used: help, man page, completion. They cannot drift apart.

#include <gtest/gtest.h>

#include "apps/process.h"
#include "apps/test_files.h"
#include "build_paths.h"

namespace {

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> words_in(const std::string& line) {
  std::istringstream in(line);
  return {std::istream_iterator<std::string>(in), std::istream_iterator<std::string>()};
}

// The long options that a line of help or of the man page declares.
std::set<std::string> options_in(const std::string& line) {
  std::set<std::string> options;
  for (std::size_t at = 0; (at = line.find("--", at)) != std::string::npos;) {
    const std::size_t end = std::min(line.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", at), line.size());
    options.insert(line.substr(at, end - at));
    at = end;
  }
  return options;
}

std::set<std::string> options_of_help(const std::string& help) {
  std::set<std::string> options;
  for (const std::string& line : lines_of(help)) {
    if (line.compare(0, 3, "  -") == 0) options.merge(options_in(words_in(line).front()));
  }
  return options;
}

std::vector<std::string> verbs() {
  std::vector<std::string> found;
  bool is_list = false;
  for (const std::string& line : lines_of(run_mendex({"--help"}).output)) {
    if (line == "Subcommands:") is_list = true;
    if (is_list && line.empty()) break;
    if (is_list && line.size() > 2 && line.compare(0, 2, "  ") == 0 && line[2] != ' ') found.push_back(words_in(line).front());
  }
  EXPECT_GE(found.size(), 15u);
  return found;
}

std::string help_of(const std::string& verb) { return run_mendex({verb, "--help"}).output; }

std::string examples_of(const std::string& help) {
  const std::size_t at = help.find("For example:\n");
  return at == std::string::npos ? "" : help.substr(at + 13);
}

// The man page, a section at a time, with the headlines of what it lists.
struct ManPage {
  std::map<std::string, std::set<std::string>> options;  // of the verbs
  std::set<std::string> commands;                        // of the shell
};

std::string without_escapes(std::string text) {
  const auto replace = [&text](const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) text.replace(at, from.size(), to);
  };
  for (const char* font : {"\\fR", "\\fP", "\\fI", "\\fB", "\""}) replace(font, "");
  replace("\\-", "-");
  return text;
}

ManPage man_page() {
  ManPage page;
  std::string section, verb;
  bool is_headline = false;
  for (const std::string& source : lines_of(contents_of_file(MENDEX_SOURCE_DIR "/docs/mendex.1"))) {
    const std::string line = without_escapes(source);
    const std::vector<std::string> words = words_in(line);
    if (line.compare(0, 4, ".SH ") == 0) section = line.substr(4);
    if (line.compare(0, 4, ".SS ") == 0 && section == "VERBS") page.options[verb = words[1]];
    if (is_headline && section == "VERBS") page.options[verb].merge(options_in(line));
    if (is_headline && section == "COMMANDS OF THE SHELL") page.commands.insert(words.at(1));
    is_headline = line == ".TP";
  }
  return page;
}

std::set<std::string> shell_commands() {
  const TestFolder folder;
  std::set<std::string> names;
  const ProcessResult result = run_mendex({"run", folder.write("help.mx", "help\n")});
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  for (const std::string& line : lines_of(result.output)) {
    if (line.size() > 2 && line.compare(0, 2, "  ") == 0 && line[2] != ' ') names.insert(words_in(line).front());
  }
  EXPECT_GE(names.size(), 45u);
  return names;
}

// What bash offers for the last word of a line.
std::vector<std::string> completed(const std::string& line) {
  std::string words;
  for (const std::string& word : words_in(line)) words += " '" + word + "'";
  if (line.back() == ' ') words += " ''";
  const std::string script = "source '" MENDEX_SOURCE_DIR "/apps/mendex/completion/mendex.bash'; COMP_WORDS=('" MENDEX_PROGRAM "'" + words +
                             "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _mendex '" MENDEX_PROGRAM
                             "' \"${COMP_WORDS[COMP_CWORD]}\" \"${COMP_WORDS[COMP_CWORD-1]}\"; printf '%s\\n' \"${COMPREPLY[@]}\"";
  ProcessSetup setup;
  setup.program = "/bin/bash";
  setup.arguments = {"-c", script};
  std::vector<std::string> found = lines_of(run_process(setup).output);
  found.erase(std::remove(found.begin(), found.end(), ""), found.end());
  return found;
}

std::set<std::string> as_set(const std::vector<std::string>& list) { return {list.begin(), list.end()}; }

}  // namespace

// Run where the files are not that they name, the examples get as far as to miss them.
TEST(MendexHelp, EndsWithAnExampleThatParses) {
  const TestFolder folder;
  for (const std::string& verb : verbs()) {
    const std::vector<std::string> examples = lines_of(examples_of(help_of(verb)));
    EXPECT_FALSE(examples.empty()) << verb;
    for (const std::string& example : examples) {
      std::vector<std::string> words = words_in(example);
      ASSERT_GE(words.size(), 2u) << verb;
      EXPECT_EQ(words[0] + " " + words[1], "mendex " + verb);
      ProcessSetup setup = mendex_setup({words.begin() + 1, words.end()});
      setup.folder = folder.path("");
      setup.input_file = "/dev/null";
      const ProcessResult result = run_process(setup);
      EXPECT_EQ(result.exit_code, verb == "formats" ? 0 : 3) << example << "\n" << result.errors;
    }
  }
}

TEST(MendexManPage, ListsTheVerbsAndOptionsThatThereAre) {
  const ManPage page = man_page();
  std::set<std::string> verbs_of_page;
  for (const auto& [verb, options] : page.options) verbs_of_page.insert(verb);
  EXPECT_EQ(verbs_of_page, as_set(verbs()));
  for (const auto& [verb, options] : page.options) {
    std::set<std::string> expected = options_of_help(help_of(verb));
    expected.erase("--help");
    EXPECT_EQ(options, expected) << verb;
  }
}

TEST(MendexManPage, ListsTheCommandsOfTheShell) { EXPECT_EQ(man_page().commands, shell_commands()); }

TEST(MendexCompletion, OffersVerbsOptionsAndWords) {
  EXPECT_EQ(as_set(completed(" ")), as_set(verbs()));
  EXPECT_EQ(completed("we"), std::vector<std::string>{"weld"});
  for (const std::string& verb : verbs()) EXPECT_EQ(as_set(completed(verb + " --")), options_of_help(help_of(verb))) << verb;
  EXPECT_EQ(completed("slice part.stl --keep "), (std::vector<std::string>{"above", "below"}));
  EXPECT_EQ(completed("check --weld n"), std::vector<std::string>{"none"});
  EXPECT_TRUE(completed("weld part").empty());  // bash goes on to names of files
}
