// Feeds the reader of the native format. The first two bytes of an input choose how the file behind them is read.

#include "format_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (const char* fault = fault_of_format_input(FuzzedFormat::native, FormatInput(data, size))) {
    std::fprintf(stderr, "%s\n", fault);
    std::abort();
  }
  return 0;
}
