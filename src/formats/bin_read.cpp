#include "formats/bin_read.h"

#include <algorithm>

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "values are read in the machine's byte order, which must be that of the files");

template <class T>
T trBinRead::read_value() {
  T value = 0;
  return read_bytes(reinterpret_cast<char*>(&value), sizeof value) == sizeof value ? value : 0;
}

char trBinRead::read_char() { return read_value<char>(); }
std::uint16_t trBinRead::read_ushort() { return read_value<std::uint16_t>(); }
std::int32_t trBinRead::read_int() { return read_value<std::int32_t>(); }
std::uint32_t trBinRead::read_ulong() { return read_value<std::uint32_t>(); }
float trBinRead::read_float() { return read_value<float>(); }
double trBinRead::read_double() { return read_value<double>(); }

int trBinRead::b_read(char* bytes, int n) {
  const int wanted = n > 0 ? n : 0;
  return read_bytes(bytes, wanted) != wanted;
}

// Replaces what was fetched and used by the next piece.
void trBinRead::fetch() {
  constexpr std::int64_t piece = 1 << 16;
  fetched_.resize(static_cast<std::size_t>(std::min(expected_, piece)));
  expected_ -= static_cast<std::int64_t>(fetched_.size());
  fetched_.resize(file == nullptr ? 0 : std::fread(fetched_.data(), 1, fetched_.size(), file));
  at_ = 0;
}

int trBinRead::read_on(char* bytes, int n) {
  int read = 0;
  while (read < n) {
    if (at_ == fetched_.size() && expected_ > 0) fetch();
    const std::size_t wanted = static_cast<std::size_t>(n - read);
    std::size_t got = std::min(wanted, fetched_.size() - at_);
    if (got != 0) {
      std::memcpy(bytes + read, fetched_.data() + at_, got);
      at_ += got;
    } else {
      got = file == nullptr ? 0 : std::fread(bytes + read, 1, wanted, file);
      if (got == 0) break;
    }
    read += static_cast<int>(got);
  }
  passed_ += read;
  if (read < n) error = 1;
  return read;
}
