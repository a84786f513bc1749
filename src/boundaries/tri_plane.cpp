#include "boundaries/tri_plane.h"

#include <cmath>

#include "progress/output.h"
#include "progress/progress.h"

namespace {

constexpr double parallel_tol = 1e-4;   // sine of the angle between directions that count as parallel
constexpr double interior_share = 0.4;  // of the progress: finding the interior nodes

const giVector3 z_axis(0.0, 0.0, 1.0);

}  // namespace

trTriPlane::trTriPlane(trTriBlock* of, double distance, const giPoint3& at, const giVector3& up)
    : at2Plane(giBox2(giPoint2(), giPoint2()), distance, distance),
      block(of),
      spacing(distance),
      origin(at),
      normal(up),
      to_plane(giXform3::translation(giPoint3() - at)),
      from_plane(giXform3::translation(at - giPoint3())) {
  const bool is_upright = std::hypot(normal.x(), normal.y()) <= parallel_tol;
  if (is_upright && normal.z() > 0.0) return;
  const bool is_reversed = is_upright && normal.z() < 0.0;
  to_plane = to_plane.then(is_reversed ? giXform3::half_turn_x() : giXform3::rotation(normal, z_axis));
  from_plane = (is_reversed ? giXform3::half_turn_x() : giXform3::rotation(z_axis, normal)).then(from_plane);
}

at2PlaneError trTriPlane::go() {
  giBox2 box;
  for (int i = 0; i < pairs.count(); ++i) box.merge(position(pairs.at(i).first));
  set_box(box);
  for (int i = 0; i < pairs.count(); ++i) add_edge(pairs.at(i).first, pairs.at(i).second);

  const double low = tr_get_percent_inf_range();
  const double high = tr_get_percent_sup_range();
  const double middle = low + interior_share * (high - low);
  tr_set_percent_range(low, middle);
  at2PlaneError error = generate_interior_nodes(nullptr);
  if (error == at2_success) {
    tr_set_percent_range(middle, high);
    error = triangulate(nullptr);
  }
  tr_set_percent_range(low, high);
  return error;
}

giPoint2 trTriPlane::position(int node) {
  const giPoint3 p = to_plane.apply(block->point(node));
  return giPoint2(p.x, p.y);
}

int trTriPlane::make_node(giPoint2 p) {
  return block->generate_node(from_plane.apply(giPoint3(p.x, p.y, 0.0)), normal, 1);
}

void trTriPlane::make_triangle(int a, int b, int c) { block->generate(a, b, c); }

int trTriPlane::progress_feedback(int stage, int value, const void* message, void*) {
  const char* const text = tr_brnknls(static_cast<const char*>(message));
  if (stage == 0) tr_report_progress(text, 0.0);
  if (stage == 1) tr_report_progress(text, static_cast<double>(value));
  return tr_interrupt() ? -1 : 0;
}
