#include "platform/utilities/ut_string.h"

#include <algorithm>

utString utString::cut(int n) const { return utString(text_.substr(0, static_cast<std::size_t>(std::max(n, 0)))); }

utString utString::pad(int n) const {
  std::string padded = cut(n).text_;
  padded.resize(static_cast<std::size_t>(std::max(n, 0)), ' ');
  return utString(padded);
}
