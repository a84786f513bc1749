#pragma once

class CharStream;

/// Passes over white space, as the C locale knows it.
void skip_space(CharStream& in);

/// Reads a number as `scanf` does for "%lf" in the "C" locale, whatever the process's locale: skips white space, then takes the longest
/// run of characters that is a number or the beginning of one, and fails when that run is no number ("1e", ".", "0x", "infin").
///
/// Decimal and hexadecimal numbers, "inf", "infinity", "nan" and "nan(...)" in any case, each with an optional sign. Correctly rounded
/// however many digits there are, infinite above the range of double, 0 or subnormal below it. Needs the same memory for every number.
/// Returns whether `value` was set; characters of a failed run are consumed.
bool scan_number(CharStream& in, double& value);
