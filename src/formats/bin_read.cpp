#include "formats/bin_read.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "values are read in the machine's byte order, which must be that of the files");

template <class T>
T trBinRead::read_value() {
  T value = 0;
  if (file != nullptr && std::fread(&value, sizeof value, 1, file) == 1) return value;
  error = 1;
  return 0;
}

char trBinRead::read_char() { return read_value<char>(); }
std::uint16_t trBinRead::read_ushort() { return read_value<std::uint16_t>(); }
std::int32_t trBinRead::read_int() { return read_value<std::int32_t>(); }
std::uint32_t trBinRead::read_ulong() { return read_value<std::uint32_t>(); }
float trBinRead::read_float() { return read_value<float>(); }
double trBinRead::read_double() { return read_value<double>(); }

int trBinRead::b_read(char* bytes, int n) {
  const std::size_t wanted = n > 0 ? static_cast<std::size_t>(n) : 0;
  if (file != nullptr && std::fread(bytes, 1, wanted, file) == wanted) return 0;
  error = 1;
  return 1;
}
