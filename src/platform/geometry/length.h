#pragma once

#include <cfloat>
#include <cmath>

/// A length, or a squared length whose root has not been taken, in one double: v >= 0 is a length, v < 0 (also -0.0) is minus a
/// squared length, and the largest double is no value.
class giLength {
 public:
  /// No value.
  giLength() = default;
  /// @param length  not negative; the largest double makes no value
  static giLength from_length(double length) { return giLength(length); }
  /// @param squared  not negative
  static giLength from_squared(double squared) { return giLength(-squared); }

  bool is_set() const { return stored_ != DBL_MAX; }

  /// The length, taking the root of a squared one; the largest double when there is no value.
  double value() const { return is_squared() ? std::sqrt(-stored_) : stored_; }
  /// The squared length; infinite when there is no value.
  double squared() const { return is_squared() ? -stored_ : stored_ * stored_; }

  /// Compares with a plain tolerance by squares; never holds for a negative tolerance, nor without a value.
  bool is_below(double tol) const { return is_set() && tol >= 0.0 && squared() < tol * tol; }
  bool is_at_most(double tol) const { return is_set() && tol >= 0.0 && squared() <= tol * tol; }

  /// Whether two lengths differ by at most tol; two without a value are the same.
  bool same(const giLength& other, double tol) const {
    if (!is_set() || !other.is_set()) return is_set() == other.is_set();
    return std::fabs(value() - other.value()) <= tol;
  }

  /// Compares by squares, so squares that both overflow are equal; no value counts as smaller than any length.
  friend bool operator<(const giLength& a, const giLength& b) {
    if (!a.is_set() || !b.is_set()) return !a.is_set() && b.is_set();
    return a.squared() < b.squared();
  }
  friend bool operator>(const giLength& a, const giLength& b) { return b < a; }

  /// The quotient stays squared when the dividend is; no value when either has none. Dividing by zero follows IEEE 754.
  friend giLength operator/(const giLength& a, const giLength& b) {
    if (!a.is_set() || !b.is_set()) return giLength();
    return a.is_squared() ? from_squared(a.squared() / b.squared()) : from_length(a.value() / b.value());
  }

 private:
  explicit giLength(double stored) : stored_(stored) {}
  bool is_squared() const { return std::signbit(stored_) && stored_ == stored_; }
  double stored_ = DBL_MAX;
};
