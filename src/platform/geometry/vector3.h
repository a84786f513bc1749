#pragma once

#include <cfloat>
#include <cmath>
#include <type_traits>

/// A vector, with its length cached in a fourth word; every write of a component makes the length unknown (the largest double).
/// A direction whose x is the lowest double stands for no direction.
class giVector3 {
 public:
  constexpr giVector3() : giVector3(0.0, 0.0, 0.0) {}
  constexpr giVector3(double x, double y, double z) : x_(x), y_(y), z_(z) {}

  double x() const { return x_; }
  double y() const { return y_; }
  double z() const { return z_; }
  double operator[](int axis) const { return axis == 0 ? x_ : (axis == 1 ? y_ : z_); }

  void set(double x, double y, double z) {
    x_ = x;
    y_ = y;
    z_ = z;
    length_ = unknown_length;
  }
  void set(int axis, double value) {
    (axis == 0 ? x_ : (axis == 1 ? y_ : z_)) = value;
    length_ = unknown_length;
  }

  /// Plain arithmetic: overflows to infinity for components beyond about 1e154, and to 0 for those below about 1e-162.
  double length_sq() const { return x_ * x_ + y_ * y_ + z_ * z_; }
  /// The root of `length_sq()`, taken once until a component is written.
  double length() const {
    if (length_ == unknown_length) length_ = std::sqrt(length_sq());
    return length_;
  }
  double dot(const giVector3& v) const { return x_ * v.x_ + y_ * v.y_ + z_ * v.z_; }
  giVector3 cross(const giVector3& v) const {
    return giVector3(y_ * v.z_ - z_ * v.y_, z_ * v.x_ - x_ * v.z_, x_ * v.y_ - y_ * v.x_);
  }

  /// Scales to length 1, to within rounding; a vector whose length computes as zero is left alone.
  void make_unit() {
    const double l = length();
    if (l != 0.0) set(x_ / l, y_ / l, z_ / l);
  }

  giVector3& operator+=(const giVector3& v) {
    set(x_ + v.x_, y_ + v.y_, z_ + v.z_);
    return *this;
  }
  giVector3& operator-=(const giVector3& v) {
    set(x_ - v.x_, y_ - v.y_, z_ - v.z_);
    return *this;
  }
  giVector3& operator*=(double factor) {
    set(x_ * factor, y_ * factor, z_ * factor);
    return *this;
  }
  giVector3& operator/=(double divisor) {
    set(x_ / divisor, y_ / divisor, z_ / divisor);
    return *this;
  }

  friend giVector3 operator+(giVector3 a, const giVector3& b) { return a += b; }
  friend giVector3 operator-(giVector3 a, const giVector3& b) { return a -= b; }
  friend giVector3 operator-(const giVector3& v) { return giVector3(-v.x_, -v.y_, -v.z_); }
  friend giVector3 operator*(giVector3 v, double factor) { return v *= factor; }
  friend giVector3 operator*(double factor, giVector3 v) { return v *= factor; }
  friend giVector3 operator/(giVector3 v, double divisor) { return v /= divisor; }
  friend bool operator==(const giVector3& a, const giVector3& b) { return a.x_ == b.x_ && a.y_ == b.y_ && a.z_ == b.z_; }
  friend bool operator!=(const giVector3& a, const giVector3& b) { return !(a == b); }

 private:
  static constexpr double unknown_length = DBL_MAX;
  double x_, y_, z_;
  mutable double length_ = unknown_length;
};

static_assert(sizeof(giVector3) == 32 && std::is_trivially_copyable<giVector3>::value, "three components and the cached length");
