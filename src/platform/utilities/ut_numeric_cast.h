#pragma once

#include <limits>
#include <type_traits>

/// Converts a number to integer type To; a value outside its range becomes the nearest end, and no number at all becomes 0.
/// Fractions are cut off. Never undefined.
template <class To, class From>
constexpr To ut_numeric_cast(From value) {
  static_assert(std::is_integral<To>::value && !std::is_same<To, bool>::value, "the target is an integer type");
  static_assert(std::is_arithmetic<From>::value, "the source is a number");
  using Limits = std::numeric_limits<To>;
  if constexpr (std::is_floating_point<From>::value) {
    if (value != value) return 0;
    // The upper limit itself may not be representable: 2^k, one above it, is.
    const From above = static_cast<From>(Limits::max() / 2 + 1) * 2;
    if (value >= above) return Limits::max();
    if (value <= static_cast<From>(Limits::min())) return Limits::min();
    return static_cast<To>(value);
  } else {
    if constexpr (std::is_signed<From>::value) {
      if (value < 0) {
        if constexpr (std::is_unsigned<To>::value) return 0;
        using Wide = long long;
        return static_cast<Wide>(value) < static_cast<Wide>(Limits::min()) ? Limits::min() : static_cast<To>(value);
      }
    }
    using Wide = unsigned long long;
    return static_cast<Wide>(value) > static_cast<Wide>(Limits::max()) ? Limits::max() : static_cast<To>(value);
  }
}
