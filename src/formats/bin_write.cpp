#include "formats/bin_write.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "values are written in the machine's byte order, which must be that of the files");

template <class T>
void trBinWrite::write_value(T value) {
  if (file == nullptr || std::fwrite(&value, sizeof value, 1, file) != 1) error = 1;
}

void trBinWrite::write_char(char value) { write_value(value); }
void trBinWrite::write_ushort(std::uint16_t value) { write_value(value); }
void trBinWrite::write_int(std::int32_t value) { write_value(value); }
void trBinWrite::write_ulong(std::uint32_t value) { write_value(value); }
void trBinWrite::write_float(float value) { write_value(value); }
void trBinWrite::write_double(double value) { write_value(value); }

int trBinWrite::b_write(const char* bytes, int n) {
  const std::size_t wanted = n > 0 ? static_cast<std::size_t>(n) : 0;
  if (file != nullptr && std::fwrite(bytes, 1, wanted, file) == wanted) return 0;
  error = 1;
  return 1;
}
