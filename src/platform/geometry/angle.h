#pragma once

/// An angle, kept in radians, given and read in degrees.
class giAngle {
 public:
  giAngle() = default;
  static giAngle from_degrees(double degrees) { return giAngle(degrees * (pi / 180.0)); }
  static giAngle from_radians(double radians) { return giAngle(radians); }

  double degrees() const { return radians_ * (180.0 / pi); }
  double radians() const { return radians_; }

 private:
  static constexpr double pi = 3.14159265358979323846;
  explicit giAngle(double radians) : radians_(radians) {}
  double radians_ = 0.0;
};
