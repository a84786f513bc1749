// Fixing edges: the triangles that an edge crosses are taken out, and the two polygons beside it filled anew.
#include "platform/triangulation/exact_predicates.h"
#include "platform/triangulation/planar_mesh.h"

// What an edge crosses. A link is an edge of the rim of the hole that the crossed triangles leave. A chain lists links
// from one end of the new edge to the other, the hole on their left.
struct PlanarMesh::Cavity {
  std::vector<int> triangles;  // those not yet used again stand at the end
  std::vector<int> halves;     // by link: its half-edge in the old triangle, then in the new one
  std::vector<int> starts;     // by link
  std::vector<int>
      outer;  // by link: the half-edge beyond, or -2 - i where link i is the same edge seen from its other side
  std::vector<Side> sides;       // by link
  std::vector<int> right, left;  // chains: from the edge's start to its end, and back
};

PlanarMesh::EdgeResult PlanarMesh::fix_edge(int a, int b) {
  EdgeResult result = EdgeResult::fixed;
  const int crossed = first_crossed(a, b, result);
  if (result != EdgeResult::fixed) return result;
  if (crossed == none) return EdgeResult::touches;
  if (start(crossed) == a) return fix_existing(crossed);
  Cavity cavity;
  result = collect_cavity(crossed, a, b, cavity);
  if (result != EdgeResult::fixed) return result;
  mark_links(cavity);
  int to_a = none, to_b = none;
  if (!fill_side(cavity, cavity.right, b, to_a) || !fill_side(cavity, cavity.left, a, to_b)) return EdgeResult::crosses;
  link_chains(cavity);
  join(to_a, to_b);
  result = fix_existing(to_b);  // before any turn, which could take the edge away again
  turn_pending();
  return result;
}

PlanarMesh::EdgeResult PlanarMesh::fix_existing(int half) {
  if (is_fixed(half)) return EdgeResult::touches;
  side_[at(half)] = Side::inside_left;
  side_[at(mate(half))] = Side::inside_right;
  return EdgeResult::fixed;
}

// The half-edge a-b if there is one, else the first half-edge that a-b crosses, which runs from its right to its left.
int PlanarMesh::first_crossed(int a, int b, EdgeResult& result) const {
  const giPoint2 &pa = point(a), &pb = point(b);
  const int first = leaving(a);
  int half = first, found = none;
  do {
    if (end(half) == b) return half;
    const giPoint2& px = point(end(half));
    const double side = orientation(pa, pb, px);
    if (side == 0.0 && (pa.x != pb.x ? (px.x > pa.x) == (pb.x > pa.x) : (px.y > pa.y) == (pb.y > pa.y))) {
      result = EdgeResult::touches;
    } else if (side < 0.0 && orientation(pa, pb, point(apex(half))) > 0.0) {
      found = next(half);
    }
    half = next_leaving(half);
  } while (half != first);
  return found;
}

PlanarMesh::EdgeResult PlanarMesh::collect_cavity(int crossed, int a, int b, Cavity& cavity) const {
  const giPoint2 &pa = point(a), &pb = point(b);
  const auto add_link = [&](std::vector<int>& chain, int half) {
    chain.push_back(static_cast<int>(cavity.halves.size()));
    cavity.halves.push_back(half);
  };
  cavity.triangles.push_back(triangle(crossed));
  add_link(cavity.right, previous(crossed));
  add_link(cavity.left, next(crossed));
  for (int node = none; node != b;) {
    if (is_fixed(crossed)) return EdgeResult::crosses;
    const int entered = mate(crossed);
    cavity.triangles.push_back(triangle(entered));
    node = apex(entered);
    const double side = node == b ? 0.0 : orientation(pa, pb, point(node));
    if (node != b && side == 0.0) return EdgeResult::touches;
    if (side <= 0.0) add_link(cavity.right, next(entered));
    if (side >= 0.0) add_link(cavity.left, previous(entered));
    crossed = side > 0.0 ? next(entered) : previous(entered);
  }
  cavity.left = std::vector<int>(cavity.left.rbegin(), cavity.left.rend());
  return EdgeResult::fixed;
}

// Keeps what the old triangles know of the links. An edge that reaches into the hole is a link from both sides.
void PlanarMesh::mark_links(Cavity& cavity) {
  link_of_.resize(start_.size(), none);
  const std::size_t links = cavity.halves.size();
  for (std::size_t i = 0; i < links; ++i) link_of_[at(cavity.halves[i])] = static_cast<int>(i);
  for (const int half : cavity.halves) {
    const int beyond = mate(half);
    cavity.outer.push_back(beyond != none && link_of_[at(beyond)] != none ? -2 - link_of_[at(beyond)] : beyond);
    cavity.starts.push_back(start(half));
    cavity.sides.push_back(side_[at(half)]);
  }
  for (const int half : cavity.halves) link_of_[at(half)] = none;
}

// Fills the polygon of a chain that ends at node `last` and the new edge. Every node of the chain sees the new edge, so
// cutting corners from one end on leaves no corner over (G. Toussaint, D. Avis, On a convex hull algorithm for polygons
// and its application to triangulation problems, 1982). `base` becomes the half-edge along the new edge.
bool PlanarMesh::fill_side(Cavity& cavity, const std::vector<int>& chain, int last, int& base) {
  struct Step {
    int node;  // where it starts
    int half;  // the half-edge beyond it, or ~link
  };
  std::vector<Step> steps;
  const auto connect = [&](int half, int beyond) {
    if (beyond >= 0) {
      join(half, beyond);
    } else {
      cavity.halves[at(~beyond)] = half;
    }
  };
  for (std::size_t i = 0; i < chain.size(); ++i) {
    steps.push_back({cavity.starts[at(chain[i])], ~chain[i]});
    const int reached = i + 1 < chain.size() ? cavity.starts[at(chain[i + 1])] : last;
    while (steps.size() >= 2) {
      const Step second = steps.back(), first = steps[steps.size() - 2];
      if (orientation(point(first.node), point(second.node), point(reached)) <= 0.0) break;
      const int t = cavity.triangles.back();
      cavity.triangles.pop_back();
      set_triangle(t, first.node, second.node, reached);
      for (int k = 0; k < 3; ++k) {
        side_[at(3 * t + k)] = Side::loose;
        pending_.push_back(3 * t + k);
      }
      connect(3 * t, first.half);
      connect(3 * t + 1, second.half);
      steps.pop_back();
      steps.back().half = base = 3 * t + 2;
    }
  }
  return steps.size() == 1;
}

void PlanarMesh::link_chains(const Cavity& cavity) {
  for (std::size_t i = 0; i < cavity.halves.size(); ++i) {
    const int half = cavity.halves[i], beyond = cavity.outer[i];
    side_[at(half)] = cavity.sides[i];
    join(half, beyond < none ? cavity.halves[at(-2 - beyond)] : beyond);
  }
}

bool PlanarMesh::mark_regions() {
  for (Region& region : region_) region = Region::unknown;
  std::vector<int> found{triangle(leaving(0))};
  region_[at(found[0])] = Region::outside;
  while (!found.empty()) {
    const int t = found.back();
    found.pop_back();
    for (int half = 3 * t; half < 3 * t + 3; ++half) {
      if (mate(half) == none) continue;
      const Side side = side_[at(half)];
      if (side == Side::inside_left && region(t) != Region::inside) return false;
      if (side == Side::inside_right && region(t) != Region::outside) return false;
      Region& beyond = region_[at(triangle(mate(half)))];
      if (beyond != Region::unknown) continue;
      beyond = side == Side::loose ? region(t) : (region(t) == Region::inside ? Region::outside : Region::inside);
      found.push_back(triangle(mate(half)));
    }
  }
  return true;
}
