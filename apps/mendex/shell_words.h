#pragma once

#include <mendexlib.h>

#include <climits>
#include <initializer_list>
#include <string>
#include <vector>

#include "shell_command.h"

/// The arguments of a command, taken one after the other. Each function throws, with the usage, when the next word is not what it takes.
class ShellWords {
 public:
  /// @param words  the command's name and what follows it
  /// @param mesh   of whose size lengths may be shares
  ShellWords(const ShellCommand& command, std::vector<std::string> words, const trTriBlock& mesh);

  bool is_empty() const { return at_ == words_.size(); }
  /// Takes the next word when it is this one; whether it was.
  bool take(const char* word);
  /// Any word; `what` names it for who forgot it: "a file".
  std::string text(const char* what);
  /// A finite number.
  double number(const char* what);
  /// A finite number from 0 up.
  double limit(const char* what);
  /// A length from 0 up, in the units of the model; it may have been given as a share of its diagonal or median edge.
  double length(const char* what);
  /// The same, above 0.
  double spacing(const char* what);
  /// A whole number.
  int count(const char* what, int least, int most = INT_MAX);
  /// A number of passes.
  int passes() { return count("a number of passes", 1, 1000000); }
  /// So many finite numbers, separated by blanks or commas.
  std::vector<double> numbers(const char* what, std::size_t count);
  /// Three numbers that are not all 0.
  giUnitVec3 direction();
  /// Whole numbers from 0 up, as many as follow, at least one.
  std::vector<int> counts(const char* what);
  /// The place of the next word among these.
  int choice(std::initializer_list<const char*> words);
  /// Whether the next word is a number, or a list of them.
  bool has_number() const;

  /// What lengths that were given as shares came to, a line for each.
  const std::string& notes() const { return notes_; }

  /// Throws when words are left.
  void expect_end() const;
  /// Throws, with the usage.
  [[noreturn]] void refuse(const std::string& why) const;

 private:
  const ShellCommand& command_;
  std::vector<std::string> words_;
  const trTriBlock& mesh_;
  std::size_t at_ = 1;
  std::string notes_;
};
