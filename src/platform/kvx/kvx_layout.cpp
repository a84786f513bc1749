// Sixteen bytes a step, with sixteen tables: M. Kounavis and F. Berry, "Novel table lookup-based algorithms for high-performance CRC
// generation", 2008.

#include <array>
#include <cstring>

#include "platform/kvx/kvx_layout.h"

namespace {

constexpr std::size_t step = 16;
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

// The checksum of a word with 4 `words_behind` zero bytes behind it.
template <std::size_t words_behind>
std::uint32_t checksum_of_word(std::uint32_t word) {
  constexpr std::size_t k = 4 * words_behind;
  return tables[k + 3][word & 0xffu] ^ tables[k + 2][word >> 8 & 0xffu] ^ tables[k + 1][word >> 16 & 0xffu] ^ tables[k][word >> 24];
}

}  // namespace

std::uint32_t kvx::checksum_of(const void* data, std::size_t count, std::uint32_t before) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  std::uint32_t crc = ~before;
  for (; count >= step; bytes += step, count -= step) {
    std::uint32_t words[step / 4];
    std::memcpy(words, bytes, sizeof words);
    crc = checksum_of_word<3>(crc ^ words[0]) ^ checksum_of_word<2>(words[1]) ^ checksum_of_word<1>(words[2]) ^ checksum_of_word<0>(words[3]);
  }
  for (; count != 0; ++bytes, --count) crc = (crc >> 8) ^ tables[0][(crc ^ *bytes) & 0xffu];
  return ~crc;
}
