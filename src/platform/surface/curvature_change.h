#pragma once

/// The derivatives of a height field at one place; as an array in this order too.
struct HeightDerivatives {
  double u, v, uu, uv, vv, uuu, uuv, uvv, vvv;
};
constexpr int height_derivative_count = 9;

/// Parts of an energy at one place: the squares of the `value`s add up to it.
struct EnergyPart {
  double value;
  double by[height_derivative_count];  ///< its derivatives by the nine above
};

/// The metric of a height field at one place, as the weights that it gives to the four components of a symmetric tensor of third
/// order: those along (u, u, u), (u, u, v), (u, v, v), (v, v, v).
struct ThirdOrderMetric {
  double weight[4][4];
  ThirdOrderMetric(double slope_u, double slope_v);
};

/// The covariant derivative of the second fundamental form of a height field; its squared length, times the element of area.
///
/// With W^2 = 1 + |grad z|^2 the form is z_ij / W, and its derivative, the same in whatever order the indices stand, is
///   (z_ijk - (z_ij p_k + z_jk p_i + z_ki p_j) / W^2) / W,   p_k = z_l z_lk.
struct CurvatureChange {
  EnergyPart parts[4];
  CurvatureChange(const HeightDerivatives& z, const ThirdOrderMetric& metric);
};

/// The second derivatives, whose squares are a thin plate's energy: (u, u), (u, v) twice, (v, v).
struct Bending {
  EnergyPart parts[3];
  explicit Bending(const HeightDerivatives& z);
};
