#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

// What stands between the program and CLI11, whose headers take seconds to compile: only `verb_options` and `command_line` see them.

/// A handle on an option, good for as long as the command line lives. What shapes the option returns the same handle.
class VerbOption {
 public:
  explicit VerbOption(CLI::Option* option) : option_(option) {}

  VerbOption required() const;
  /// What the help shows for the value, such as "PATH".
  VerbOption type_name(const std::string& name) const;
  /// `problem` returns what is wrong with a text, or nothing.
  VerbOption check(const std::function<std::string(const std::string&)>& problem) const;
  /// The text must be one of these.
  VerbOption one_of(const std::vector<std::string>& texts) const;
  /// The help shows the present value as the default.
  VerbOption show_default() const;
  /// The help shows this as the default.
  VerbOption show_default(const std::string& text) const;
  /// The heading of the help that it stands under.
  VerbOption group(const std::string& heading) const;
  /// Not both may be given.
  VerbOption excludes(VerbOption other) const;

  /// How often it was given.
  std::size_t count() const;
  /// The longest name, with its dashes.
  std::string name() const;
  std::string group() const;
  bool is_positional() const;
  /// What gives the option as often and with the same values: "--tol=0.1", "--force".
  std::vector<std::string> words() const;

 private:
  CLI::Option* option_;
};

/// A handle on the options of a verb, or of the whole program, good for as long as the command line lives; so must be the values that
/// options write to.
///
/// A name is all the names of an option, as "-o,--output", or one without dashes for what is given by its place.
class VerbOptions {
 public:
  explicit VerbOptions(CLI::App* verb) : verb_(verb) {}

  VerbOption add_option(const std::string& name, std::string& value, const std::string& text) const;
  VerbOption add_option(const std::string& name, char& value, const std::string& text) const;
  VerbOption add_option(const std::string& name, int& value, const std::string& text) const;
  VerbOption add_option(const std::string& name, double& value, const std::string& text) const;
  /// Takes many.
  VerbOption add_option(const std::string& name, std::vector<std::string>& values, const std::string& text) const;
  /// `take` is called with the text once that was checked.
  VerbOption add_option(const std::string& name, const std::function<void(const std::string&)>& take, const std::string& text) const;
  VerbOption add_flag(const std::string& name, bool& is_given, const std::string& text) const;
  /// "--name{VALUE}": the value may be left out, and is VALUE then.
  VerbOption add_flag(const std::string& name, std::string& value, const std::string& text) const;

  /// `missing` is called when all options were taken, and returns what is required and was not given, or nothing.
  void require(const std::function<std::string()>& missing) const;
  /// What the help ends with.
  void set_footer(const std::string& text) const;

  /// The name of the verb.
  std::string name() const;
  /// How often the option with that name was given.
  std::size_t count(const std::string& name) const;
  /// All, in the order of the help.
  std::vector<VerbOption> options() const;
  /// An option that the program has for all verbs.
  VerbOption option_of_program(const std::string& name) const;

 private:
  CLI::App* verb_;
};
