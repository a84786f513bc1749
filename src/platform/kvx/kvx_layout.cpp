// Eight bytes a step, with eight tables: M. Kounavis and F. Berry, "Novel table lookup-based algorithms for high-performance CRC
// generation", 2008.

#include <array>
#include <cstring>

#include "platform/kvx/kvx_layout.h"

namespace {

constexpr std::size_t step = 8;
using Tables = std::array<std::array<std::uint32_t, 256>, step>;

// Table k has the checksum of each byte with k zero bytes behind it.
constexpr Tables make_tables() {
  Tables tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t crc = byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1u) != 0 ? 0xedb88320u : 0u);
    tables[0][byte] = crc;
  }
  for (std::size_t k = 1; k < step; ++k) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t before = tables[k - 1][byte];
      tables[k][byte] = (before >> 8) ^ tables[0][before & 0xffu];
    }
  }
  return tables;
}

constexpr Tables tables = make_tables();

std::uint32_t checksum_of_step(std::uint32_t low, std::uint32_t high) {
  return tables[7][low & 0xffu] ^ tables[6][low >> 8 & 0xffu] ^ tables[5][low >> 16 & 0xffu] ^ tables[4][low >> 24] ^
         tables[3][high & 0xffu] ^ tables[2][high >> 8 & 0xffu] ^ tables[1][high >> 16 & 0xffu] ^ tables[0][high >> 24];
}

}  // namespace

std::uint32_t kvx::checksum_of(const void* data, std::size_t count, std::uint32_t before) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  std::uint32_t crc = ~before;
  for (; count >= step; bytes += step, count -= step) {
    std::uint32_t words[2];
    std::memcpy(words, bytes, sizeof words);
    crc = checksum_of_step(crc ^ words[0], words[1]);
  }
  for (; count != 0; ++bytes, --count) crc = (crc >> 8) ^ tables[0][(crc ^ *bytes) & 0xffu];
  return ~crc;
}
