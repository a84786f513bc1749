#pragma once

#include "platform/geometry/point3.h"
#include "platform/utilities/export.h"

/// An affine map: p -> A p + b. The identity by default.
class MENDEX_EXPORT giXform3 {
 public:
  giXform3() = default;

  /// A from the first three columns, b from the fourth.
  static giXform3 from_rows(const double (&rows)[3][4]);
  static giXform3 translation(const giVector3& by);
  /// Stretches along the axes, away from the origin.
  static giXform3 scaling(double x, double y, double z);
  /// Turns about an axis through the origin, counter-clockwise as seen from its tip. The identity when the axis is zero.
  static giXform3 turn(const giVector3& axis, double radians);
  /// Rotation about the origin that takes the direction of `from` to that of `to` by the shortest way, to within rounding for every
  /// pair of directions; opposite directions turn half round about some axis across them. The identity when either is zero.
  static giXform3 rotation(const giVector3& from, const giVector3& to);
  /// Half turn about the x axis: y and z change sign.
  static giXform3 half_turn_x();

  giPoint3 apply(const giPoint3& p) const;
  /// Vectors are turned, not moved.
  giVector3 apply(const giVector3& v) const;

  /// This map first, `next` after it.
  giXform3 then(const giXform3& next) const;
  /// How volumes grow; negative for a map that mirrors.
  double determinant() const;
  /// The map back; a map that flattens space has none and yields numbers that are not finite.
  giXform3 inverse() const;

 private:
  double cofactor(int i, int j) const;

  double a_[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
  double b_[3] = {0.0, 0.0, 0.0};
};
