#include "oracles/triangulation_literal.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace {

using Real = long double;

const giPoint2& node(const PlaneArea& area, int i) { return area.points[static_cast<std::size_t>(i)]; }
int following(const PlaneArea& area, std::size_t i) { return area.next[i]; }

Real cross(const giPoint2& a, const giPoint2& b, const giPoint2& c) {
  return (Real(b.x) - a.x) * (Real(c.y) - a.y) - (Real(b.y) - a.y) * (Real(c.x) - a.x);
}

// Beyond what rounding could explain.
bool surely_in_circle(const giPoint2& a, const giPoint2& b, const giPoint2& c, const giPoint2& d) {
  const giPoint2* corner[3] = {&a, &b, &c};
  Real sum = 0.0L, size = 0.0L;
  for (int k = 0; k < 3; ++k) {
    const giPoint2 &p = *corner[k], &q = *corner[(k + 1) % 3], &r = *corner[(k + 2) % 3];
    const Real x = Real(p.x) - d.x, y = Real(p.y) - d.y, far_sq = x * x + y * y;
    sum += far_sq * cross(d, q, r);
    size +=
        far_sq * (std::fabs((Real(q.x) - d.x) * (Real(r.y) - d.y)) + std::fabs((Real(q.y) - d.y) * (Real(r.x) - d.x)));
  }
  return sum > 1e-17L * size;
}

// The loops as lists of nodes.
std::vector<std::vector<int>> loops_of(const PlaneArea& area) {
  std::vector<std::vector<int>> loops;
  std::vector<char> seen(area.boundary_count(), 0);
  for (std::size_t first = 0; first < seen.size(); ++first) {
    if (seen[first] != 0) continue;
    loops.emplace_back();
    for (int i = static_cast<int>(first); seen[static_cast<std::size_t>(i)] == 0;
         i = following(area, static_cast<std::size_t>(i))) {
      seen[static_cast<std::size_t>(i)] = 1;
      loops.back().push_back(i);
    }
  }
  return loops;
}

Real loop_area(const PlaneArea& area, const std::vector<int>& loop) {
  Real doubled = 0.0L;
  for (const int i : loop)
    doubled += cross(node(area, loop[0]), node(area, i), node(area, following(area, static_cast<std::size_t>(i))));
  return doubled / 2.0L;
}

Real segment_distance(const giPoint2& a, const giPoint2& b, const giPoint2& p) {
  const Real ux = Real(b.x) - a.x, uy = Real(b.y) - a.y;
  const Real along = ((Real(p.x) - a.x) * ux + (Real(p.y) - a.y) * uy) / (ux * ux + uy * uy);
  const Real t = std::min(1.0L, std::max(0.0L, along));
  return std::hypot(Real(a.x) + t * ux - p.x, Real(a.y) + t * uy - p.y);
}

Real distance(const giPoint2& a, const giPoint2& b) { return std::hypot(Real(a.x) - b.x, Real(a.y) - b.y); }

bool on_segment(const giPoint2& a, const giPoint2& b, const giPoint2& p) {
  return cross(a, b, p) == 0.0L && std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) &&
         std::min(a.y, b.y) <= p.y && p.y <= std::max(a.y, b.y);
}

bool properly_cross(const giPoint2& a, const giPoint2& b, const giPoint2& c, const giPoint2& d) {
  const auto opposite = [](Real s, Real t) { return (s < 0.0L && t > 0.0L) || (s > 0.0L && t < 0.0L); };
  return opposite(cross(a, b, c), cross(a, b, d)) && opposite(cross(c, d, a), cross(c, d, b));
}

bool loop_holds(const PlaneArea& area, const std::vector<int>& loop, const giPoint2& p) {
  bool inside = false;
  for (const int i : loop) {
    const giPoint2 &a = node(area, i), &b = node(area, following(area, static_cast<std::size_t>(i)));
    if ((a.y > p.y) == (b.y > p.y)) continue;
    if ((cross(a, b, p) > 0.0L) == (b.y > a.y)) inside = !inside;
  }
  return inside;
}

}  // namespace

double loop_area(const PlaneArea& area) {
  Real sum = 0.0L;
  for (const auto& loop : loops_of(area)) sum += loop_area(area, loop);
  return static_cast<double>(sum);
}

std::string triangulation_fault(const PlaneArea& area) {
  std::map<std::pair<int, int>, int> apex;  // by side
  std::vector<char> used(area.points.size(), 0);
  Real doubled = 0.0L;
  for (const auto& t : area.triangles) {
    const Real turn = cross(node(area, t[0]), node(area, t[1]), node(area, t[2]));
    if (!(turn > 0.0L)) return "a triangle does not turn counter-clockwise";
    doubled += turn;
    for (int k = 0; k < 3; ++k) {
      used[static_cast<std::size_t>(t[k])] = 1;
      if (!apex.emplace(std::pair(t[k], t[(k + 1) % 3]), t[(k + 2) % 3]).second) return "a side occurs twice";
    }
  }
  for (const char u : used) {
    if (u == 0) return "a node is not used";
  }
  for (std::size_t i = 0; i < area.boundary_count(); ++i) {
    const int a = static_cast<int>(i), b = following(area, i);
    if (apex.count({a, b}) == 0) return "an edge is missing";
    if (apex.count({b, a}) != 0) return "an edge has triangles on both sides";
  }
  for (const auto& [side, across] : apex) {
    const auto [a, b] = side;
    if (static_cast<std::size_t>(a) < area.boundary_count() && following(area, static_cast<std::size_t>(a)) == b)
      continue;
    const auto opposite = apex.find({b, a});
    if (opposite == apex.end()) return "a side has no opposite";
    if (surely_in_circle(node(area, a), node(area, b), node(area, across), node(area, opposite->second)))
      return "a node lies in the circle of a triangle";
  }
  Real wanted = 0.0L;
  std::size_t triangles = 2 * area.interior_count() + area.boundary_count();
  for (const auto& loop : loops_of(area)) {
    const Real part = loop_area(area, loop);
    triangles += part > 0.0L ? std::size_t(-2) : std::size_t(2);
    wanted += part;
  }
  if (area.triangles.size() != triangles) return "the number of triangles is not Euler's";
  return std::fabs(doubled / 2.0L - wanted) <= 1e-9L * wanted ? "" : "the areas differ";
}

std::string spacing_fault(const PlaneArea& area) {
  std::vector<Real> shorter(area.boundary_count(), HUGE_VALL);
  for (std::size_t i = 0; i < shorter.size(); ++i) {
    const Real length = distance(area.points[i], node(area, following(area, i)));
    for (const std::size_t end : {i, static_cast<std::size_t>(following(area, i))})
      shorter[end] = std::min(shorter[end], length);
  }
  const Real steepness = std::min(8.0L, std::max(0.125L, Real(area.spacing) / area.grading));
  std::vector<Real> locals;
  for (std::size_t k = area.boundary_count(); k < area.points.size(); ++k) {
    const giPoint2& p = area.points[k];
    Real upper = area.spacing, lower = area.spacing, nearest = HUGE_VALL;
    for (std::size_t i = 0; i < shorter.size(); ++i) {
      upper = std::min(upper, shorter[i] + steepness * distance(area.points[i], p) / 4.0L);
      lower = std::max(lower, shorter[i] - steepness * distance(area.points[i], p) * 1.5L);
      nearest = std::min(nearest, segment_distance(area.points[i], node(area, following(area, i)), p));
    }
    locals.push_back(upper < area.spacing ? upper : lower);
    if (nearest < 0.499999L * locals.back()) return "a node is nearer to the boundary than half the local spacing";
    for (std::size_t j = 0; j + 1 < locals.size(); ++j) {
      const Real apart = distance(area.points[area.boundary_count() + j], p);
      if (apart < 0.3L * std::min(locals[j], locals.back())) return "two nodes are much nearer than the local spacing";
    }
  }
  return "";
}

double sharpest_angle(const PlaneArea& area) {
  double sharpest = 180.0;
  for (const auto& t : area.triangles) {
    for (int k = 0; k < 3; ++k) {
      const giPoint2 &a = node(area, t[k]), &b = node(area, t[(k + 1) % 3]), &c = node(area, t[(k + 2) % 3]);
      const Real scalar = (Real(b.x) - a.x) * (Real(c.x) - a.x) + (Real(b.y) - a.y) * (Real(c.y) - a.y);
      sharpest = std::min(sharpest, static_cast<double>(std::atan2(cross(a, b, c), scalar) * 57.29577951308232L));
    }
  }
  return sharpest;
}

ExpectedErrors expected_errors(const PlaneArea& area) {
  const std::size_t n = area.boundary_count();
  const auto& p = area.points;
  bool coincident = false, flat = true, touching = false, crossing = false;
  for (std::size_t i = 0; i < n; ++i) {
    const auto i_end = static_cast<std::size_t>(following(area, i));
    for (std::size_t j = 0; j < n; ++j) {
      const auto j_end = static_cast<std::size_t>(following(area, j));
      coincident = coincident || (i != j && p[i] == p[j]);
      for (std::size_t k = 0; k < n; ++k) flat = flat && cross(p[i], p[j], p[k]) == 0.0L;
      touching = touching || (j != i && j != i_end && on_segment(p[i], p[i_end], p[j]));
      crossing = crossing || properly_cross(p[i], p[i_end], p[j], p[j_end]);
    }
  }
  if (flat) return {at2_zero_area, at2_zero_area};
  if (coincident) return {at2_coincident_nodes, at2_coincident_nodes};
  if (touching || crossing)
    return {touching ? at2_touching_loops : at2_crossing_loops, crossing ? at2_crossing_loops : at2_touching_loops};
  const auto loops = loops_of(area);
  for (const auto& loop : loops) {
    int around = 0;
    for (const auto& other : loops) around += &other != &loop && loop_holds(area, other, node(area, loop[0])) ? 1 : 0;
    if ((loop_area(area, loop) > 0.0L) != (around % 2 == 0)) return {at2_wrong_direction, at2_wrong_direction};
  }
  return {};
}
