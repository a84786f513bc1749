#pragma once

#include <cstdio>
#include <string>

/// The number conversion "%lf" of scanf as the C standard words it (7.21.6.2), in the "C" locale, one character after the other.
///
/// White space is skipped. The input item is the longest run of characters that is a number or the beginning of one; the conversion
/// fails when the item itself is no number. What follows the item stays in the stream.
bool literal_scan_number(std::FILE* file, double& value);

/// Whether the text is a whole number by the grammar of strtod.
bool is_number(const std::string& text);

/// Whether the text is a number or the beginning of one.
bool is_beginning_of_number(const std::string& text);
