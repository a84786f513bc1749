// The planar triangulator on round holes: the time does not depend on the mesh around them, only on rim and spacing.
#include <cmath>
#include <vector>

#include "measure.h"
#include "platform/triangulation/at2_plane.h"
#include "support/check.h"
#include "support/timing.h"

namespace {

constexpr double pi = 3.141592653589793;

// A regular polygon around the origin; adds up what it gets instead of keeping it.
class RoundHole : public at2Plane {
 public:
  RoundHole(int edge_count, double spacing)
      : at2Plane(giBox2(giPoint2(-1, -1), giPoint2(1, 1)), spacing, spacing), edge_count_(edge_count) {
    for (int i = 0; i < edge_count; ++i) {
      points_.emplace_back(std::cos(2.0 * pi * i / edge_count), std::sin(2.0 * pi * i / edge_count));
      add_edge(i, (i + 1) % edge_count);
    }
  }

  giPoint2 position(int node) override { return points_[static_cast<std::size_t>(node)]; }
  int make_node(giPoint2 p) override {
    points_.push_back(p);
    return static_cast<int>(points_.size()) - 1;
  }
  void make_triangle(int a, int b, int c) override {
    const giPoint2 p = position(a), q = position(b), r = position(c);
    area_ += 0.5 * ((q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x));
    ++triangle_count_;
  }
  int progress_feedback(int, int, const void*, void*) override { return 0; }

  void check(double least_nodes, double most_nodes) const {
    const double interior = static_cast<double>(points_.size()) - edge_count_;
    require(interior >= least_nodes && interior <= most_nodes, "interior nodes of a round hole");
    require(triangle_count_ == 2.0 * interior + edge_count_ - 2.0, "triangles of a round hole");
    const double area = 0.5 * edge_count_ * std::sin(2.0 * pi / edge_count_);
    require(std::fabs(area_ - area) <= 1e-9 * area, "area of a round hole");
  }

 private:
  int edge_count_;
  std::vector<giPoint2> points_;
  double area_ = 0.0;
  double triangle_count_ = 0.0;
};

double time_hole(int edge_count, double spacing, double least_nodes, double most_nodes) {
  RoundHole hole(edge_count, spacing);
  const double seconds = seconds_of([&] {
    require(hole.generate_interior_nodes(nullptr) == at2_success, "generate_interior_nodes");
    require(hole.triangulate(nullptr) == at2_success, "triangulate");
  });
  hole.check(least_nodes, most_nodes);
  return seconds;
}

// As many interior nodes as the model has triangles, at the length of the edges.
double time_round_hole(const Model& model) {
  const auto nodes = static_cast<double>(model.facets());
  const int edge_count = static_cast<int>(std::sqrt(4.0 * pi * 0.8660254 * nodes));
  return time_hole(edge_count, 2.0 * std::sin(pi / edge_count), 0.8 * nodes, 1.2 * nodes);
}

// An edge for every hundred triangles of the model, 10^4 for 10^6, at the spacing of ten edges: the nodes thin out
// towards the middle.
double time_long_rim(const Model& model) {
  const int edge_count = static_cast<int>(model.facets() / 100);
  return time_hole(edge_count, 20.0 * std::sin(pi / edge_count), 3.0 * edge_count, 15.0 * edge_count);
}

}  // namespace

void add_triangulation_measures(std::vector<Measure>& list) {
  list.push_back({"cap_round_hole", "flat_parse", time_round_hole});
  list.push_back({"cap_long_rim", "flat_parse", time_long_rim});
}
