#pragma once

#include <array>
#include <vector>

#include "platform/triangulation/at2_plane.h"

/// An area for the planar triangulator that keeps what it makes, counts what it is asked and can refuse.
class PlaneArea : public at2Plane {
 public:
  explicit PlaneArea(double even_spacing) : PlaneArea(even_spacing, even_spacing) {}
  PlaneArea(double spacing_at_most, double grading_length);

  /// Adds nodes and the edges from each to the next and from the last to the first. Their order is the numbering.
  void add_loop(const std::vector<giPoint2>& loop);
  /// Both steps; the error of the one that fails.
  at2PlaneError run();

  giPoint2 position(int node) override { return points[static_cast<std::size_t>(node)]; }
  int make_node(giPoint2 p) override;
  void make_triangle(int a, int b, int c) override { triangles.push_back({a, b, c}); }
  int progress_feedback(int stage, int value, const void* message, void* data) override;

  std::size_t boundary_count() const { return next.size(); }
  std::size_t interior_count() const { return points.size() - next.size(); }
  bool made_nothing() const { return interior_count() == 0 && triangles.empty(); }

  std::vector<giPoint2> points;  ///< boundary nodes, then those made
  std::vector<int> next;         ///< of boundary nodes
  std::vector<std::array<int, 3>> triangles;
  double spacing, grading;
  int polls = 0;               ///< calls of progress_feedback
  int stop_at = 0;             ///< the poll from which on the work shall stop; 0 for none
  int refused_node = -1;       ///< make_node refuses the one that would get this number
  bool percents_fall = false;  ///< ever, or leave 0 to 100
  void* seen_data = nullptr;

 private:
  int last_percent_ = 0;
};

/// n nodes on a circle around the origin, counter-clockwise.
std::vector<giPoint2> circle_loop(int n, double radius = 1.0);
