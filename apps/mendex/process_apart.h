#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// What work in a process of its own may take.
struct WorkLimits {
  int seconds = 0;           // of processor time
  std::uint64_t bytes = 0;   // of memory beyond what the program itself has
};

/// Does work in a process of its own and returns what it returns: code that may crash, hang or ask for all memory then costs no more
/// than its result.
///
/// Throws a Failure to read with what the work threw, or with how it ended; and on interruption, after ending it. The other
/// process sees the program's memory as it is now and changes nothing in it; it does not outlive the program.
std::string run_apart(const std::function<std::string()>& work, const WorkLimits& limits);
