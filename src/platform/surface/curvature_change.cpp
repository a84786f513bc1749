#include "platform/surface/curvature_change.h"

#include <cmath>

namespace {

enum Derivative { by_u, by_v, by_uu, by_uv, by_vv, by_uuu };

// A number with its derivatives by the first five derivatives of the height.
struct Dual {
  double value = 0.0;
  double by[5] = {};

  static Dual variable(double value, Derivative which) {
    Dual d;
    d.value = value;
    d.by[which] = 1.0;
    return d;
  }
};

Dual operator+(Dual a, const Dual& b) {
  a.value += b.value;
  for (int k = 0; k < 5; ++k) a.by[k] += b.by[k];
  return a;
}

Dual operator*(const Dual& a, const Dual& b) {
  Dual product;
  product.value = a.value * b.value;
  for (int k = 0; k < 5; ++k) product.by[k] = a.by[k] * b.value + a.value * b.by[k];
  return product;
}

Dual operator*(double factor, Dual a) {
  a.value *= factor;
  for (double& d : a.by) d *= factor;
  return a;
}

Dual inverse(const Dual& a) {
  Dual result;
  result.value = 1.0 / a.value;
  for (int k = 0; k < 5; ++k) result.by[k] = -a.by[k] * result.value * result.value;
  return result;
}

EnergyPart second(double value, Derivative which, double weight) {
  EnergyPart result{};
  result.value = weight * value;
  result.by[which] = weight;
  return result;
}

}  // namespace

ThirdOrderMetric::ThirdOrderMetric(double slope_u, double slope_v) {
  const double steepness = std::sqrt(1.0 + slope_u * slope_u + slope_v * slope_v);  // W
  // The root of the inverse metric: 1 / W along the slope, 1 across.
  const double shrink = 1.0 / (steepness * (steepness + 1.0));
  const double a = 1.0 - shrink * slope_u * slope_u;
  const double b = -shrink * slope_u * slope_v;
  const double d = 1.0 - shrink * slope_v * slope_v;
  const double rows[4][4] = {{a * a * a, 3.0 * a * a * b, 3.0 * a * b * b, b * b * b},
                             {a * a * b, a * a * d + 2.0 * a * b * b, b * b * b + 2.0 * a * b * d, b * b * d},
                             {a * b * b, b * b * b + 2.0 * a * b * d, a * d * d + 2.0 * b * b * d, b * d * d},
                             {b * b * b, 3.0 * b * b * d, 3.0 * b * d * d, d * d * d}};
  for (int m = 0; m < 4; ++m) {
    // The mixed components occur three times; one W is the form's, the square of its root the element of area.
    const double often = (m == 1 || m == 2 ? std::sqrt(3.0) : 1.0) / std::sqrt(steepness);
    for (int n = 0; n < 4; ++n) weight[m][n] = often * rows[m][n];
  }
}

CurvatureChange::CurvatureChange(const HeightDerivatives& z, const ThirdOrderMetric& metric) {
  const Dual u = Dual::variable(z.u, by_u);
  const Dual v = Dual::variable(z.v, by_v);
  const Dual uu = Dual::variable(z.uu, by_uu);
  const Dual uv = Dual::variable(z.uv, by_uv);
  const Dual vv = Dual::variable(z.vv, by_vv);
  Dual one;
  one.value = 1.0;
  const Dual scale = inverse(one + u * u + v * v);
  const Dual pu = scale * (u * uu + v * uv);
  const Dual pv = scale * (u * uv + v * vv);
  const Dual turning[4] = {3.0 * (uu * pu), uu * pv + 2.0 * (uv * pu), vv * pu + 2.0 * (uv * pv), 3.0 * (vv * pv)};
  const double third[4] = {z.uuu, z.uuv, z.uvv, z.vvv};
  for (int m = 0; m < 4; ++m) {
    parts[m] = EnergyPart{};
    for (int n = 0; n < 4; ++n) {
      const double weight = metric.weight[m][n];
      parts[m].value += weight * (third[n] - turning[n].value);
      for (int k = 0; k < 5; ++k) parts[m].by[k] -= weight * turning[n].by[k];
      parts[m].by[by_uuu + n] = weight;
    }
  }
}

Bending::Bending(const HeightDerivatives& z)
    : parts{second(z.uu, by_uu, 1.0), second(z.uv, by_uv, std::sqrt(2.0)), second(z.vv, by_vv, 1.0)} {}
