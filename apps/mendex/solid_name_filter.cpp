#include "solid_name_filter.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t longest_keyword = 8;  // "endsolid"

bool is_line_end(char c) { return c == '\n' || c == '\r'; }
bool is_separator(char c) { return c == ' ' || c == '\t' || is_line_end(c); }

const char* word_end(const char* from, const char* end) { return std::find_if(from, end, is_separator); }

bool is_word(const char* begin, const char* end, std::string_view keyword) {
  return static_cast<std::size_t>(end - begin) == keyword.size() &&
         std::equal(begin, end, keyword.begin(), [](char c, char k) { return c == k || c == k - 'a' + 'A'; });
}

// The nearest 's' of either case. No other keyword of the format has one, so a text is passed at the speed of memchr.
class LetterSearch {
 public:
  explicit LetterSearch(const char* end) : end_(end) {}

  const char* next(const char* from) {
    advance(lower_, 's', from);
    advance(upper_, 'S', from);
    return std::min(lower_, upper_);
  }

 private:
  void advance(const char*& found, char letter, const char* from) const {
    if (found != nullptr && found >= from) return;
    found = static_cast<const char*>(std::memchr(from, letter, static_cast<std::size_t>(end_ - from)));
    if (found == nullptr) found = end_;
  }

  const char* end_;
  const char* lower_ = nullptr;
  const char* upper_ = nullptr;
};

}  // namespace

void SolidNameFilter::add(const char* piece, std::size_t size, std::string& out) {
  const char* begin = piece;
  if (!kept_back_.empty()) {
    joined_.assign(kept_back_).append(piece, size);
    kept_back_.clear();
    begin = joined_.data();
    size = joined_.size();
  }
  const char* end = begin + size;
  const char* last_word = end;
  while (last_word > begin && !is_separator(last_word[-1])) --last_word;
  const bool continues = last_word == begin && is_in_long_word_;
  if (!continues && static_cast<std::size_t>(end - last_word) <= longest_keyword) {
    kept_back_.assign(last_word, end);
    end = last_word;
  }
  filter(begin, end, out);
  if (size > 0) is_in_long_word_ = begin != end && !is_separator(end[-1]);
}

void SolidNameFilter::finish(std::string& out) {
  const std::string rest = std::move(kept_back_);
  kept_back_.clear();
  filter(rest.data(), rest.data() + rest.size(), out);
}

void SolidNameFilter::filter(const char* begin, const char* end, std::string& out) {
  const char* at = begin;
  if (is_in_long_word_) {
    at = word_end(at, end);
    if (!is_in_name_) out.append(begin, at);
  }
  while (at < end) at = is_in_name_ ? drop_name(at, end, out) : pass_text(at, end, out);
}

// Copies up to and with the next "solid" or "endsolid". A word begins at `from`, or a separator stands there; the last
// word may go on beyond `end`, but is then too long for a keyword.
const char* SolidNameFilter::pass_text(const char* from, const char* end, std::string& out) {
  LetterSearch letters(end);
  for (const char* s = letters.next(from); s < end; s = letters.next(s + 1)) {
    const char* word = s;
    while (word > from && s - word <= 3 && !is_separator(word[-1])) --word;
    const char* after = word_end(s, end);
    if (!is_word(word, after, "solid") && !is_word(word, after, "endsolid")) continue;
    out.append(from, after);
    is_in_name_ = true;
    saw_facet_ = false;
    return after;
  }
  out.append(from, end);
  return end;
}

const char* SolidNameFilter::drop_name(const char* from, const char* end, std::string& out) {
  for (const char* at = from; at < end;) {
    if (is_line_end(*at)) {
      is_in_name_ = false;
      return at;
    }
    if (is_separator(*at)) {
      ++at;
      continue;
    }
    const char* after = word_end(at, end);
    if (saw_facet_ && (is_word(at, after, "normal") || is_word(at, after, "outer"))) {
      out.append(" facet ").append(at, after);
      is_in_name_ = false;
      return after;
    }
    saw_facet_ = is_word(at, after, "facet");
    at = after;
  }
  return end;
}
