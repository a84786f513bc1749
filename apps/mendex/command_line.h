#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "failure.h"
#include "session.h"
#include "verb_options.h"

/// The command line: which verbs there are, and the one that was given.
class CommandLine {
 public:
  using Run = std::function<ExitCode(Session&)>;

  CommandLine();
  ~CommandLine();

  /// Adds a verb, whose options its caller adds to what is returned. `run` is called when the verb was given and its options hold good.
  VerbOptions add_verb(const char* name, const char* summary, Run run);

  /// What the help of a verb ends with: notes, which may be empty, and an example, a whole command.
  static void set_notes(VerbOptions verb, const std::string& notes, const std::string& example);

  /// Nothing when there is a verb to be run. Else shows help, version or what was wrong, and returns the code to end with.
  std::optional<ExitCode> parse(int argc, char** argv);
  /// Does what the verb that was given stands for.
  ExitCode run(Session& session) const;

 private:
  struct Verb {
    CLI::App* app;
    Run run;
  };

  void explain_missing_verb() const;
  std::string verb_names() const;

  std::unique_ptr<CLI::App> app_;
  bool is_quiet_ = false;
  bool is_verbose_ = false;
  std::string max_memory_;
  std::string units_;
  std::vector<Verb> verbs_;
};
