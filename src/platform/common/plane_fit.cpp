#include "platform/common/plane_fit.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <new>
#include <vector>

namespace {

enum FitResult { fitted = 0, too_few = 1, not_finite = 2, on_one_line = 3, no_memory = 4 };

double largest_coordinate(const std::vector<giPoint3>& points) {
  double largest = 0.0;
  for (const giPoint3& p : points) largest = std::max({largest, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
  return largest;
}

// Multiplies by a power of two, so that the largest coordinate comes to lie between half and 1. Returns the power that
// undoes it.
int scale_to_unit(std::vector<giPoint3>& points) {
  int exponent = 0;
  std::frexp(largest_coordinate(points), &exponent);
  for (giPoint3& p : points) {
    for (int axis = 0; axis < 3; ++axis) p[axis] = std::ldexp(p[axis], -exponent);
  }
  return exponent;
}

// Takes the average off all points and returns it. Averaging the differences from the first point keeps the digits of
// points that lie close together far from the origin.
giPoint3 centre(std::vector<giPoint3>& points) {
  const giPoint3 first = points.front();
  giVector3 sum;
  for (giPoint3& p : points) {
    const giVector3 from_first = p - first;
    sum += from_first;
    p = giPoint3() + from_first;
  }
  const giVector3 average = sum / static_cast<double>(points.size());
  for (giPoint3& p : points) p = p - average;
  return first + average;
}

// The points as a matrix of three columns, turned about the origin until its columns are orthogonal.
class PrincipalAxes {
 public:
  explicit PrincipalAxes(std::vector<giPoint3>& points) : points_(points) {
    for (int sweep = 0; sweep < most_sweeps; ++sweep) {
      bool turned = false;
      for (int first = 0; first < 2; ++first) {
        for (int second = first + 1; second < 3; ++second) turned = make_orthogonal(first, second) || turned;
      }
      if (!turned) break;
    }
    for (int k = 0; k < 3; ++k) width_[k] = std::sqrt(column_product(k, k) / static_cast<double>(points.size()));
    std::sort(order_, order_ + 3,
              [this](int a, int b) { return width_[a] < width_[b] || (width_[a] == width_[b] && a > b); });
  }

  // The root mean square extent along an axis; axis 0 is that of the smallest.
  double width(int axis) const { return width_[order_[axis]]; }
  giVector3 direction(int axis) const {
    const int k = order_[axis];
    return giVector3(turn_[0][k], turn_[1][k], turn_[2][k]);
  }

 private:
  static constexpr int most_sweeps = 40;  // about 5 are needed

  double column_product(int a, int b) const {
    double sum = 0.0;
    for (const giPoint3& p : points_) sum += p[a] * p[b];
    return sum;
  }

  bool make_orthogonal(int a, int b) {
    const double aa = column_product(a, a), bb = column_product(b, b), ab = column_product(a, b);
    if (std::fabs(ab) <= 4.0 * DBL_EPSILON * std::sqrt(aa) * std::sqrt(bb)) return false;
    const double cotangent = (bb - aa) / (2.0 * ab);  // of twice the angle
    const double tangent = std::copysign(1.0, cotangent) / (std::fabs(cotangent) + std::hypot(1.0, cotangent));
    const double cosine = 1.0 / std::hypot(1.0, tangent), sine = cosine * tangent;
    const auto turned = [=](double& at_a, double& at_b) {
      const double old_a = at_a;
      at_a = cosine * old_a - sine * at_b;
      at_b = sine * old_a + cosine * at_b;
    };
    for (giPoint3& p : points_) turned(p[a], p[b]);
    for (auto& row : turn_) turned(row[a], row[b]);
    return true;
  }

  std::vector<giPoint3>& points_;
  double turn_[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
  double width_[3];
  int order_[3] = {0, 1, 2};
};

giVector3 with_sign(giVector3 normal) {
  const double largest = std::max({std::fabs(normal.x()), std::fabs(normal.y()), std::fabs(normal.z())});
  int axis = 2;
  while (std::fabs(normal[axis]) < 0.999 * largest) --axis;
  if (normal[axis] < 0.0) normal = -normal;
  normal.make_unit();
  return giVector3(normal.x() + 0.0, normal.y() + 0.0, normal.z() + 0.0);  // turns -0.0 into 0.0
}

}  // namespace

ccPlaneFit::~ccPlaneFit() = default;

int ccPlaneFit::fit(giPoint3& origin, giVector3& normal, double& residual) const try {
  const int count = size();
  if (count < 3) return too_few;
  std::vector<giPoint3> points;
  for (int i = 0; i < count; ++i) {
    const giPoint3& p = data_point(i);
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) return not_finite;
    points.push_back(p);
  }
  const int unit = scale_to_unit(points);
  const double rounding = 4.0 * DBL_EPSILON * largest_coordinate(points);
  const giPoint3 average = centre(points);
  const int extent = scale_to_unit(points);
  const PrincipalAxes axes(points);
  if (axes.width(1) <= std::ldexp(rounding, -extent) + 4.0 * DBL_EPSILON * axes.width(2)) return on_one_line;
  origin = giPoint3(std::ldexp(average.x, unit), std::ldexp(average.y, unit), std::ldexp(average.z, unit));
  normal = with_sign(axes.direction(0));
  residual = std::ldexp(axes.width(0), unit + extent);
  return fitted;
} catch (const std::bad_alloc&) {
  return no_memory;
}
