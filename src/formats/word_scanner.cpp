#include "formats/word_scanner.h"

#include <algorithm>

#include "formats/number_scan.h"

namespace {

bool is_separator(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

}  // namespace

void WordScanner::skip_separators() {
  while (in_.look_ahead(1) != 0) {
    const char* const word = std::find_if_not(in_.begin(), in_.end(), is_separator);
    in_.skip(static_cast<std::size_t>(word - in_.begin()));
    if (in_.begin() != in_.end()) return;
  }
}

std::string_view WordScanner::next_word() {
  constexpr std::size_t longest_word = 99;
  skip_separators();
  const std::size_t available = in_.look_ahead(longest_word + 1);
  const char* const word = in_.begin();
  const char* const end = std::find_if(word, word + std::min(available, longest_word), is_separator);
  const auto length = static_cast<std::size_t>(end - word);
  has_ended_ = length == available;
  in_.skip(has_ended_ ? length : length + 1);  // a separator goes with the word, and so does the character that is one too many
  return {word, length};
}

bool WordScanner::next_number(double& value) { return scan_number(in_, value); }
