#include "formats/bin_read.h"

#include "formats/little_endian.h"

int trBinRead::b_read(char* bytes, int n) {
  if (n <= 0) return 0;
  const auto wanted = static_cast<std::size_t>(n);
  if (file != nullptr && std::fread(bytes, 1, wanted, file) == wanted) return 0;
  error = 1;
  return 1;
}

namespace {

// The value's bytes, or zeros after a short read: a value that came in part reads as 0.
template <int size>
struct ValueBytes {
  explicit ValueBytes(trBinRead& in) {
    char read[size] = {};
    if (in.b_read(read, size) == 0) std::memcpy(bytes, read, size);
  }
  unsigned char bytes[size] = {};
};

}  // namespace

char trBinRead::read_char() { return static_cast<char>(ValueBytes<1>(*this).bytes[0]); }

unsigned short trBinRead::read_ushort() { return load_u16(ValueBytes<2>(*this).bytes); }

int trBinRead::read_int() { return static_cast<int>(load_u32(ValueBytes<4>(*this).bytes)); }

std::uint32_t trBinRead::read_ulong() { return load_u32(ValueBytes<4>(*this).bytes); }

float trBinRead::read_float() { return load_f32(ValueBytes<4>(*this).bytes); }

double trBinRead::read_double() { return load_f64(ValueBytes<8>(*this).bytes); }
