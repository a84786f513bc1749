#pragma once

#include <stdexcept>
#include <string>

/// Ends the run when a result is wrong: no time is reported for it.
inline void require(bool holds, const std::string& what) {
  if (!holds) throw std::runtime_error("wrong result: " + what);
}
