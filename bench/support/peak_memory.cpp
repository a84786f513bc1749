#include "support/peak_memory.h"

#include <fstream>
#include <string>

namespace {

// A line of /proc/self/status that gives kibibytes.
std::int64_t status_bytes(const std::string& key) {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word) {
    if (word != key) continue;
    std::int64_t kibibytes = 0;
    status >> kibibytes;
    return kibibytes * 1024;
  }
  return 0;
}

}  // namespace

std::int64_t resident_bytes() { return status_bytes("VmRSS:"); }

std::int64_t peak_resident_bytes() { return status_bytes("VmHWM:"); }

void reset_peak_memory() {
  std::ofstream clear("/proc/self/clear_refs");
  clear << "5" << std::flush;
}
