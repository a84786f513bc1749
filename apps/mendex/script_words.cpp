#include "script_words.h"

#include "failure.h"

namespace {

// Takes a line apart character by character.
class WordSplitter {
 public:
  explicit WordSplitter(const std::string& line) : line_(line) {}

  std::vector<std::string> split() {
    while (at_ < line_.size()) {
      if (is_blank(line_[at_])) {
        ++at_;
      } else if (line_[at_] == '#') {
        break;
      } else {
        words_.emplace_back();
        take_word();
      }
    }
    return std::move(words_);
  }

 private:
  static bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

  void take_word() {
    while (at_ < line_.size() && !is_blank(line_[at_])) {
      const char c = line_[at_++];
      if (c == '\'' || c == '"') {
        take_quoted(c);
      } else {
        add(c);
      }
    }
  }

  void take_quoted(char quote) {
    while (at_ < line_.size()) {
      const char c = line_[at_++];
      if (c == quote) return;
      quote == '"' ? add(c) : words_.back().push_back(c);
    }
    throw Failure(ExitCode::wrong_usage, std::string("the quote ") + quote + " is not closed");
  }

  void add(char c) {
    if (c == '\\' && at_ < line_.size()) c = line_[at_++];
    words_.back().push_back(c);
  }

  const std::string& line_;
  std::size_t at_ = 0;
  std::vector<std::string> words_;
};

}  // namespace

std::vector<std::string> words_of(const std::string& line) { return WordSplitter(line).split(); }
