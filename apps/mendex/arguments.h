#pragma once

#include <mendexlib.h>

#include <optional>
#include <string>
#include <vector>

#include "length_argument.h"
#include "verb_options.h"

// Arguments that several verbs take. Each function that is named for a problem returns what is wrong with a text, or nothing.

/// A finite number from 0 up. The library takes any tolerance, but nobody means to merge a whole model into one point.
std::string tolerance_problem(const std::string& text);

/// Finite numbers with commas between; nothing where that is not what the text is.
std::optional<std::vector<double>> numbers_in(const std::string& text);

/// Three numbers that are not all 0.
std::string direction_problem(const std::string& text);

/// Adds an option that takes a number from 0 up and shows its default.
void add_limit(VerbOptions verb, const char* name, double& limit, const char* unit, const char* text);

/// Adds an option that takes a length. `length` must live as long as the verb.
VerbOption add_length(VerbOptions verb, const char* name, LengthArgument& length, const char* text);

/// Adds an option that takes a whole number from `least` up.
VerbOption add_count(VerbOptions verb, const char* name, int& count, int least, const char* text);

/// Adds the file to be read.
void add_input(VerbOptions verb, std::string& path);
/// Adds -o with the file to be written.
void add_output(VerbOptions verb, std::string& path);
/// Adds --axis with x, y or z.
void add_axis(VerbOptions verb, char& axis);

/// The axis of that name.
gi_Axis axis_of(char name);
