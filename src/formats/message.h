#pragma once

#include <cstdint>
#include <string>

#include "progress/output.h"

/// Prints a text in the host's language on a line of its own.
void print_message(const char* text);

/// Prints a line made of two such texts and a number between them, in plain digits whatever the stream's locale.
void print_message(const char* before, std::int64_t number, const char* after);
