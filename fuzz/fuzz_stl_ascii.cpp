// Feeds the reader of ASCII STL. The first four bytes of an input choose how the file behind them is read.

#include "stl_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (const char* fault = fault_of_stl_input(StlInput(data, size), &trTriRead::read_ast)) {
    std::fprintf(stderr, "%s\n", fault);
    std::abort();
  }
  return 0;
}
