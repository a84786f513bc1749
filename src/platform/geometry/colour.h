#pragma once

#include <cstdint>

/// A colour of four 8-bit components; black and transparent by default.
class giColour {
 public:
  giColour() = default;
  giColour(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha)
      : red_(red), green_(green), blue_(blue), alpha_(alpha) {}

  std::uint8_t red() const { return red_; }
  std::uint8_t green() const { return green_; }
  std::uint8_t blue() const { return blue_; }
  std::uint8_t alpha() const { return alpha_; }

  friend bool operator==(const giColour& a, const giColour& b) {
    return a.red_ == b.red_ && a.green_ == b.green_ && a.blue_ == b.blue_ && a.alpha_ == b.alpha_;
  }
  friend bool operator!=(const giColour& a, const giColour& b) { return !(a == b); }

 private:
  std::uint8_t red_ = 0;
  std::uint8_t green_ = 0;
  std::uint8_t blue_ = 0;
  std::uint8_t alpha_ = 0;
};
