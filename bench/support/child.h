#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "support/timing.h"

/// A word of a shell's command.
std::string quoted(const std::string& word);

/// The file of that name in the folder of this program, and this program.
std::filesystem::path beside_this_program(const std::string& name);
std::filesystem::path this_program();

/// The numbers that a shell's command prints; none when it fails.
std::vector<double> numbers_of(const std::string& command);

/// Runs a program to its end, which must be a good one, and measures it as a whole: processor time, and peak of resident memory.
Cost cost_of_program(const std::vector<std::string>& words);

/// What this program does for that in a process of its own, so that the child inherits no large one: `PROGRAM ARGUMENTS...`.
int run_program_probe(char** words);
