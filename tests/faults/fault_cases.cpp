#include "faults/fault_cases.h"

#include <algorithm>
#include <cmath>

namespace {

int size_of(const Shape& shape) { return static_cast<int>(shape.points.size()); }

void append(Shape& shape, const Shape& other, double scale, const giVector3& offset) {
  const int first = size_of(shape);
  for (const giPoint3& p : other.points) shape.points.push_back(giPoint3(scale * p.x, scale * p.y, scale * p.z) + offset);
  for (const auto& t : other.triangles) shape.triangles.push_back({t[0] + first, t[1] + first, t[2] + first});
}

// Every so many triangles one is missing, turned over, there twice, loose by a little, or has a flap or a needle on an edge.
void damage(Shape& shape) {
  const std::size_t count = shape.triangles.size();
  std::vector<std::array<int, 3>> kept;
  for (std::size_t e = 0; e < count; ++e) {
    std::array<int, 3> t = shape.triangles[e];
    const giPoint3 p = shape.points[static_cast<std::size_t>(t[0])];
    const giPoint3 q = shape.points[static_cast<std::size_t>(t[1])];
    switch (e % 23) {
      case 3: continue;
      case 5: std::swap(t[0], t[1]); break;
      case 8: kept.push_back(t); break;
      case 10: kept.push_back({t[1], t[0], t[2]}); break;
      case 13:
        for (int& corner : t) {
          shape.points.push_back(shape.points[static_cast<std::size_t>(corner)] + giVector3(1e-7, 0, 0));
          corner = size_of(shape) - 1;
        }
        break;
      case 16:
        shape.points.push_back(p + giVector3(0.05, 0.1, 0.2));
        kept.push_back({t[0], t[1], size_of(shape) - 1});
        break;
      case 19:
        shape.points.push_back(p + 0.5 * (q - p) + giVector3(1e-6, 1e-6, 0));
        kept.push_back({t[0], t[1], size_of(shape) - 1});
        break;
      default: break;
    }
    kept.push_back(t);
  }
  shape.triangles = kept;
}

void nothing(trControl&) {}
void merge(trControl& c) { c.action_undup(1e-6); }

void leave_gaps(trControl& c) {
  for (int e = 1; e < c.triblock().element_count(); e += 5) c.triblock().delete_element(e);
  for (int i = 2; i < c.triblock().node_count(); i += 7) {
    trIntListIT it = c.triblock().node_elements(i);
    bool is_used = false;
    while (++it) is_used = is_used || c.triblock().element(it()).valid();
    if (!is_used) c.triblock().delete_node(i);
  }
}

// Fitting a surface to a hole takes its time.
template <int count>
void select(trControl& c) {
  merge(c);
  intcoSet ids;
  for (int k = 0; k < std::min(c.cycles().num_boundaries(), count); ++k) ids.add(k);
  double length = 0.0;
  c.select_cycles(ids, length, -1, intcoSet(), -1, -1);
}

template <int curvature>
void fill(trControl& c) {
  c.action_fill(curvature);
}
template <int curvature>
void cap(trControl& c) {
  at2PlaneError error = at2_success;
  c.action_cap(0.1, error, curvature);
}
template <int curvature>
void cap_ext(trControl& c) {
  at2PlaneError error = at2_success;
  c.action_cap_ext(0.1, curvature, error);
}

}  // namespace

Shape messy_model(int n) {
  Shape shape = bumpy_sphere(n / 2);
  damage(shape);
  append(shape, bumpy_sphere(n / 8), 0.7, giVector3(0.6, 0.3, 0.2));
  const int cells = std::max(1, static_cast<int>(std::sqrt(n / 30.0)));
  append(shape, flat_sheet(cells, cells), 1.0, giVector3(3, 0, 0));
  append(shape, flat_sheet(2 * cells, 2 * cells), 1.0, giVector3(4, 0, 0));
  return shape;
}

const std::vector<FaultCase>& fault_cases() {
  static const std::vector<FaultCase> cases = {
      {"undup", nothing, [](trControl& c) { c.action_undup(1e-6); }},
      {"bundup", nothing, [](trControl& c) { c.action_bundup(1e-6); }},
      {"renumber", leave_gaps, [](trControl& c) { c.action_renumber(); }},
      {"swap", merge, [](trControl& c) { c.action_swap(0.8, 2); }},
      {"height", merge, [](trControl& c) { c.action_height(1e-4); }},
      {"aspect", merge, [](trControl& c) { c.action_aspect(0.2); }},
      {"cancelling", merge, [](trControl& c) { c.action_cancelling(0); }},
      {"cancelling_both", merge, [](trControl& c) { c.action_cancelling(1); }},
      {"overlapping", merge, [](trControl& c) { c.action_overlapping(20); }},
      {"intersecting", merge, [](trControl& c) { c.action_intersecting(50); }},
      {"overhanging", merge, [](trControl& c) { c.action_overhanging(giUnitVec3(giVector3(0, 0, 1))); }},
      {"orient", merge, [](trControl& c) { c.action_orient(); }},
      {"reverse", nothing, [](trControl& c) { c.action_reverse(); }},
      {"cure_all", merge, [](trControl& c) { c.action_cure(0); }},
      {"cure_but_two", merge, [](trControl& c) { c.action_cure(1); }},
      {"fins", merge, [](trControl& c) { c.triblock().cure_sick_fins(); }},
      {"slice", merge, [](trControl& c) { c.action_slice(gi_x_axis, 0.11, 1); }},
      {"transform", nothing, [](trControl& c) { c.action_transform_triangles(giXform3::half_turn_x()); }},
      {"stitch", merge, [](trControl& c) { c.action_stitch(0.05); }},
      {"staple", merge, [](trControl& c) { c.action_staple(0.01); }},
      {"astaple", merge, [](trControl& c) { c.action_astaple(0.01, 3); }},
      {"auto_stitch", nothing, [](trControl& c) { c.action_auto_stitch(Multi, 0.005, 0.01, 0.005, 2, 1, 1, 1, 0); }},
      {"fill", select<40>, fill<0>},
      {"fill_curved", select<2>, fill<1>},
      {"cap", select<40>, cap<0>},
      {"cap_curved", select<2>, cap<1>},
      {"cap_ext", select<40>, cap_ext<0>, true},
      {"cap_ext_curved", select<2>, cap_ext<1>, true},
  };
  return cases;
}
