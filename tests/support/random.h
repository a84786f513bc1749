#pragma once

#include <cstdint>

/// Random numbers that are the same on every machine (splitmix64: G. Steele et al., "Fast splittable pseudorandom
/// number generators", 2014).
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t bits() {
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
  }
  /// 0 to n - 1.
  int below(int n) { return static_cast<int>(bits() % static_cast<std::uint64_t>(n)); }
  /// low to high, both included.
  int between(int low, int high) { return low + below(high - low + 1); }
  bool one_in(int n) { return below(n) == 0; }
  /// 0 to 1, 1 excluded.
  double unit() { return static_cast<double>(bits() >> 11) * 0x1p-53; }
  double between(double low, double high) { return low + (high - low) * unit(); }

 private:
  std::uint64_t state_;
};
