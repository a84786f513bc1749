#include "formats/bin_write.h"

#include "formats/little_endian.h"

int trBinWrite::b_write(const char* bytes, int n) {
  if (n <= 0) return 0;
  const auto wanted = static_cast<std::size_t>(n);
  if (file != nullptr && std::fwrite(bytes, 1, wanted, file) == wanted) return 0;
  error = 1;
  return 1;
}

void trBinWrite::write_char(char value) { b_write(&value, 1); }

void trBinWrite::write_ushort(unsigned short value) {
  unsigned char bytes[2];
  store_u16(bytes, value);
  write_bytes(bytes);
}

void trBinWrite::write_int(int value) { write_ulong(static_cast<std::uint32_t>(value)); }

void trBinWrite::write_ulong(std::uint32_t value) {
  unsigned char bytes[4];
  store_u32(bytes, value);
  write_bytes(bytes);
}

void trBinWrite::write_float(float value) {
  unsigned char bytes[4];
  store_f32(bytes, value);
  write_bytes(bytes);
}

void trBinWrite::write_double(double value) {
  unsigned char bytes[8];
  store_f64(bytes, value);
  write_bytes(bytes);
}
