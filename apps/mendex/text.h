#pragma once

#include <mendexlib.h>

#include <string>

// What reports for people are made of.

/// The text that printf would print, up to 400 characters.
__attribute__((format(printf, 1, 2))) std::string formatted(const char* format, ...);
/// "(1 2 3)"
std::string place(const giPoint3& p);
/// "1 boundary", "2 boundaries"
std::string counted(long long count, const char* one, const char* many);
