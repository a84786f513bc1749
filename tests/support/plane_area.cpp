#include "support/plane_area.h"

#include <cfloat>
#include <cmath>

namespace {

const giBox2 everything(giPoint2(-DBL_MAX, -DBL_MAX), giPoint2(DBL_MAX, DBL_MAX));

}  // namespace

PlaneArea::PlaneArea(double spacing_at_most, double grading_length)
    : at2Plane(everything, spacing_at_most, grading_length), spacing(spacing_at_most), grading(grading_length) {}

void PlaneArea::add_loop(const std::vector<giPoint2>& loop) {
  const int first = static_cast<int>(points.size()), last = first + static_cast<int>(loop.size()) - 1;
  for (const giPoint2& p : loop) {
    const int node = static_cast<int>(points.size());
    points.push_back(p);
    next.push_back(node == last ? first : node + 1);
    add_edge(node, next.back());
  }
}

at2PlaneError PlaneArea::run() {
  const at2PlaneError error = generate_interior_nodes(this);
  return error != at2_success ? error : triangulate(this);
}

int PlaneArea::make_node(giPoint2 p) {
  const int number = static_cast<int>(points.size());
  if (number == refused_node) return -1;
  points.push_back(p);
  return number;
}

int PlaneArea::progress_feedback(int stage, int value, const void* message, void* data) {
  seen_data = message != nullptr ? data : nullptr;
  if (stage == 0) last_percent_ = 0;
  if (value < last_percent_ || value > 100) percents_fall = true;
  last_percent_ = value;
  return ++polls >= stop_at && stop_at > 0 ? 1 : 0;
}

std::vector<giPoint2> circle_loop(int n, double radius) {
  std::vector<giPoint2> loop;
  for (int i = 0; i < n; ++i) {
    const double angle = 6.283185307179586 * i / n;
    loop.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
  }
  return loop;
}
