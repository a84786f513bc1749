#pragma once

#include <string>
#include <vector>

/// The words of a line, as shells know them: separated by blanks, with 'quotes' that take everything as it is, "quotes" in which a
/// backslash takes the next character as it is, as it does outside quotes, and a comment from a # at the start of a word. Throws when a
/// quote is not closed.
std::vector<std::string> words_of(const std::string& line);
