#include "mesh/tri_data.h"

#include <cstdint>

int tr_encode_colour(const giColour& colour) {
  const std::uint32_t packed = (std::uint32_t{colour.red()} << 24) | (std::uint32_t{colour.green()} << 16) |
                               (std::uint32_t{colour.blue()} << 8) | std::uint32_t{colour.alpha()};
  return static_cast<int>(packed);
}

giColour tr_decode_colour(int encoded) {
  const std::uint32_t packed = static_cast<std::uint32_t>(encoded);
  const auto byte = [packed](int shift) { return static_cast<std::uint8_t>((packed >> shift) & 0xffu); };
  return giColour(byte(24), byte(16), byte(8), byte(0));
}

void trTriDataBlock::set_colour(int i, int c) {
  if (i >= colours.count() && !colours.get_block(i >> colours.page_shift())) return co_entry_lost();
  if (colours.count() == 0) colours[0] = c;
  for (int k = colours.count(); k < i; ++k) colours[k] = NO_COLOUR;
  colours[i] = c;
}
