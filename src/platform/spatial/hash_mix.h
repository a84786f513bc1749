#pragma once

#include <cstdint>

/// Spreads the bits of a key over all 64 bits (finalizer of SplitMix64; Steele, Lea, Flood, "Fast splittable pseudorandom number
/// generators", 2014).
inline std::uint64_t mix_hash(std::uint64_t key) {
  key += 0x9e3779b97f4a7c15u;
  key = (key ^ (key >> 30)) * 0xbf58476d1ce4e5b9u;
  key = (key ^ (key >> 27)) * 0x94d049bb133111ebu;
  return key ^ (key >> 31);
}
