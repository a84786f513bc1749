#pragma once

#include <optional>

/// The number at the start of a text, as the conversion "%lf" takes it, and where it ends.
struct NumberText {
  std::optional<double> value;  // none when the text does not start with a whole number
  const char* end;
};

/// Reads the number at `text`, white space not skipped; `end` bounds the text. Independent of the locale.
NumberText parse_number(const char* text, const char* end);
