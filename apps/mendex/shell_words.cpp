#include "shell_words.h"

#include <cmath>

#include "arguments.h"
#include "failure.h"
#include "length_argument.h"
#include "text.h"

namespace {

// Words of strangers may be long.
std::string in_quotes(const std::string& word) {
  constexpr std::size_t shown = 60;
  return "'" + (word.size() <= shown ? word : word.substr(0, shown) + "...") + "'";
}

bool is_whole(double value, int least, int most) { return value >= least && value <= most && value == std::floor(value); }

}  // namespace

ShellWords::ShellWords(const ShellCommand& command, std::vector<std::string> words, const trTriBlock& mesh)
    : command_(command), words_(std::move(words)), mesh_(mesh) {}

bool ShellWords::take(const char* word) {
  if (is_empty() || words_[at_] != word) return false;
  ++at_;
  return true;
}

std::string ShellWords::text(const char* what) {
  if (is_empty() || words_[at_].empty()) refuse(std::string("it takes ") + what);
  return words_[at_++];
}

double ShellWords::number(const char* what) {
  const std::string word = text(what);
  const auto found = numbers_in(word);
  if (!found || found->size() != 1) refuse(in_quotes(word) + " is not " + what);
  return found->front();
}

double ShellWords::limit(const char* what) {
  const double value = number(what);
  if (value < 0.0) refuse(in_quotes(words_[at_ - 1]) + " is below 0");
  return value;
}

double ShellWords::length(const char* what) {
  const std::string word = text(what);
  const std::optional<LengthArgument> length = LengthArgument::parse(word);
  if (!length) refuse(in_quotes(word) + " is not " + what + " from 0 up such as 0.01, 1e-5d or 0.2e");
  const double value = length->resolve(mesh_);
  if (length->is_relative()) notes_ += "  " + word + formatted(" is %.7g\n", value);
  return value;
}

double ShellWords::spacing(const char* what) {
  const double value = length(what);
  if (!(value > 0.0)) refuse(in_quotes(words_[at_ - 1]) + " is not above 0");
  return value;
}

int ShellWords::count(const char* what, int least, int most) {
  const double value = number(what);
  if (!is_whole(value, least, most)) {
    const std::string upper = most == INT_MAX ? " up" : " to " + std::to_string(most);
    refuse(in_quotes(words_[at_ - 1]) + " is not a whole number from " + std::to_string(least) + upper);
  }
  return static_cast<int>(value);
}

std::vector<double> ShellWords::numbers(const char* what, std::size_t count) {
  std::vector<double> taken;
  while (taken.size() < count) {
    const std::string word = text(what);
    const auto found = numbers_in(word);
    if (!found || taken.size() + found->size() > count) refuse(in_quotes(word) + " is not " + what);
    taken.insert(taken.end(), found->begin(), found->end());
  }
  return taken;
}

giUnitVec3 ShellWords::direction() {
  const std::vector<double> v = numbers("a direction such as 0 0 1", 3);
  const giVector3 vector(v[0], v[1], v[2]);
  if (!(vector.length() > 0.0)) refuse("three zeros are no direction");
  return giUnitVec3(vector);
}

std::vector<int> ShellWords::counts(const char* what) {
  std::vector<int> taken;
  do {
    const std::string word = text(what);
    for (const double value : numbers_in(word).value_or(std::vector<double>{-1.0})) {
      if (!is_whole(value, 0, INT_MAX)) refuse(in_quotes(word) + " is not " + what);
      taken.push_back(static_cast<int>(value));
    }
  } while (has_number());
  return taken;
}

int ShellWords::choice(std::initializer_list<const char*> words) {
  std::string all;
  int place = 0;
  for (const char* word : words) {
    if (take(word)) return place;
    ++place;
    all += std::string(all.empty() ? "" : ", ") + word;
  }
  refuse(is_empty() ? "it takes one of " + all : in_quotes(words_[at_]) + " is none of " + all);
}

bool ShellWords::has_number() const { return !is_empty() && numbers_in(words_[at_]).has_value(); }

void ShellWords::expect_end() const {
  if (!is_empty()) refuse("what is " + in_quotes(words_[at_]) + " for?");
}

void ShellWords::refuse(const std::string& why) const {
  throw Failure(ExitCode::wrong_usage, std::string(command_.name) + ": " + why + "; usage: " + usage_of(command_));
}
