#pragma once

#include <ostream>

#include "progress/message.h"
#include "progress/output.h"

// The pieces of one-line summaries. Each text is shown before the next is translated: a hook may use one buffer for all
// its answers.

inline void print_in_language(const char* text) { tr_out() << tr_brnknls(text); }
inline void print_number(int number) { print_text("%d", number); }
/// Six significant digits.
inline void print_number(double number) { print_text("%g", number); }
inline void end_line() { tr_out() << '\n'; }
