#pragma once

#include <string>

#include "platform/utilities/export.h"
#include "platform/utilities/ut_numeric_cast.h"

/// Text handed across the library's interface. Holds bytes; a null pointer reads as the empty text.
class MENDEX_EXPORT utString {
 public:
  utString() = default;
  utString(const char* text) : text_(text == nullptr ? "" : text) {}  // NOLINT: texts convert
  utString(const std::string& text) : text_(text) {}                  // NOLINT

  const char* c_str() const { return text_.c_str(); }
  /// Number of bytes.
  int length() const { return ut_numeric_cast<int>(text_.size()); }
  bool empty() const { return text_.empty(); }

  utString& operator+=(const utString& other) {
    text_ += other.text_;
    return *this;
  }
  friend utString operator+(utString a, const utString& b) { return a += b; }
  friend bool operator==(const utString& a, const utString& b) { return a.text_ == b.text_; }
  friend bool operator!=(const utString& a, const utString& b) { return a.text_ != b.text_; }
  friend bool operator<(const utString& a, const utString& b) { return a.text_ < b.text_; }

  /// At most the first n bytes; none for a negative n.
  utString cut(int n) const;
  /// Exactly n bytes, none for a negative n: cut, or filled up with blanks behind.
  utString pad(int n) const;

 private:
  std::string text_;
};
