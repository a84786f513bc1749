#include "platform/triangulation/at2_plane.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>

#include "platform/triangulation/boundary_loops.h"
#include "platform/triangulation/exact_predicates.h"
#include "platform/triangulation/hex_grid.h"
#include "platform/triangulation/insertion_order.h"
#include "platform/triangulation/interior_nodes.h"
#include "platform/triangulation/planar_mesh.h"
#include "platform/triangulation/spacing_field.h"
#include "platform/triangulation/work_meter.h"

// All coordinates and lengths in here are multiplied by a power of two, so that no coordinate exceeds 1.
struct at2Plane::Work {
  BoundaryLoops loops;
  std::vector<giPoint2> points;  // of the boundary, by number in the loops
  std::vector<int> next;         // the node that follows in its loop
  std::vector<int> mesh_nodes;   // its number in the mesh
  int exponent = 0;              // coordinates are positions times two to minus this power
  std::optional<PlanarMesh> mesh;
  std::optional<SpacingField> field;
  bool has_interior = false;

  int first_interior() const { return PlanarMesh::corner_nodes + loops.node_count(); }

  at2PlaneError insert_boundary(WorkMeter& meter);
  at2PlaneError insert_nodes(const std::vector<int>& order, std::size_t& from, std::size_t end, WorkMeter& meter);
  at2PlaneError fix_boundary_edge(int start, std::vector<char>& fixed, WorkMeter& meter);
  at2PlaneError insert_interior(double spacing, double grading, WorkMeter& meter);
  double area() const;
};

namespace {

std::size_t at(int index) { return static_cast<std::size_t>(index); }

bool is_finite(const giPoint2& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

double distance(const giPoint2& a, const giPoint2& b) { return std::hypot(b.x - a.x, b.y - a.y); }

bool on_one_line(const std::vector<giPoint2>& points) {
  const giPoint2& first = points.front();
  const giPoint2& farthest = *std::max_element(points.begin(), points.end(), [&](const giPoint2& a, const giPoint2& b) {
    return distance(first, a) < distance(first, b);
  });
  return std::all_of(points.begin(), points.end(),
                     [&](const giPoint2& p) { return orientation(first, farthest, p) == 0.0; });
}

bool has_repeats(std::vector<giPoint2> points) {
  std::sort(points.begin(), points.end(),
            [](const giPoint2& a, const giPoint2& b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
  return std::adjacent_find(points.begin(), points.end()) != points.end();
}

giBox2 box_of(const std::vector<giPoint2>& points) {
  giBox2 box;
  for (const giPoint2& p : points) box.merge(p);
  return box;
}

PlanarMesh mesh_over(const std::vector<giPoint2>& points) {
  const giBox2 box = box_of(points);
  const double margin = std::max(box.max().x - box.min().x, box.max().y - box.min().y);
  return PlanarMesh(giPoint2(box.min().x - margin, box.min().y - margin),
                    giPoint2(box.max().x + margin, box.max().y + margin));
}

}  // namespace

// Edges are fixed as soon as a round of insertions has both their ends, and the ends of long ones come early: an edge
// then crosses few triangles, and the edges fixed keep what is inserted later from growing across them.
at2PlaneError at2Plane::Work::insert_boundary(WorkMeter& meter) {
  mesh.emplace(mesh_over(points));
  mesh->reserve(PlanarMesh::corner_nodes + loops.node_count());
  mesh_nodes.assign(points.size(), PlanarMesh::none);
  std::vector<int> previous(points.size());
  std::vector<double> longest(points.size(), 0.0);
  for (std::size_t i = 0; i < points.size(); ++i) {
    const std::size_t end = at(next[i]);
    const double length = distance(points[i], points[end]);
    previous[end] = static_cast<int>(i);
    longest[i] = std::max(longest[i], length);
    longest[end] = std::max(longest[end], length);
  }
  const InsertionOrder order = insertion_order(points, longest);
  std::vector<char> fixed(points.size(), 0);
  std::size_t inserted = 0;
  for (const std::size_t end : order.round_end) {
    const std::size_t start = inserted;
    at2PlaneError error = insert_nodes(order.order, inserted, end, meter);
    for (std::size_t k = start; k < end && error == at2_success; ++k) {
      error = fix_boundary_edge(order.order[k], fixed, meter);
      if (error == at2_success) error = fix_boundary_edge(previous[at(order.order[k])], fixed, meter);
    }
    if (error != at2_success) return error;
  }
  return mesh->mark_regions() ? at2_success : at2_wrong_direction;
}

at2PlaneError at2Plane::Work::insert_nodes(const std::vector<int>& order, std::size_t& from, std::size_t end,
                                           WorkMeter& meter) {
  for (int near = 0; from < end; ++from) {
    if (!meter.step()) return at2_interrupted;
    const giPoint2& p = points[at(order[from])];
    const PlanarMesh::Place place = mesh->locate(p, near);
    if (place.kind == PlanarMesh::PlaceKind::on_node || place.kind == PlanarMesh::PlaceKind::outside)
      return at2_coincident_nodes;
    if (place.kind == PlanarMesh::PlaceKind::on_edge && mesh->is_fixed(place.half)) return at2_touching_loops;
    mesh_nodes[at(order[from])] = mesh->insert(p, place);
    near = PlanarMesh::triangle(place.half);
  }
  return at2_success;
}

// The edge that starts at a node, unless it is fixed or an end still to be inserted.
at2PlaneError at2Plane::Work::fix_boundary_edge(int start, std::vector<char>& fixed, WorkMeter& meter) {
  const int a = mesh_nodes[at(start)], b = mesh_nodes[at(next[at(start)])];
  if (fixed[at(start)] != 0 || a == PlanarMesh::none || b == PlanarMesh::none) return at2_success;
  if (!meter.step()) return at2_interrupted;
  fixed[at(start)] = 1;
  switch (mesh->fix_edge(a, b)) {
    case PlanarMesh::EdgeResult::touches:
      return at2_touching_loops;
    case PlanarMesh::EdgeResult::crosses:
      return at2_crossing_loops;
    case PlanarMesh::EdgeResult::fixed:
      break;
  }
  return at2_success;
}

double at2Plane::Work::area() const {
  double doubled = 0.0;
  for (int t = 0; t < mesh->triangle_count(); ++t) {
    if (mesh->region(t) != PlanarMesh::Region::inside) continue;
    doubled += orientation(mesh->point(mesh->start(3 * t)), mesh->point(mesh->start(3 * t + 1)),
                           mesh->point(mesh->start(3 * t + 2)));
  }
  return 0.5 * doubled;
}

at2PlaneError at2Plane::Work::insert_interior(double spacing, double grading, WorkMeter& meter) {
  const giBox2 box = box_of(points);
  if (spacing >= distance(box.min(), box.max())) return at2_success;
  const double expected = area() / (0.8660254037844386 * spacing * spacing);
  if (!(expected <= max_interior_nodes)) return at2_too_many_nodes;

  const double steepness = std::clamp(spacing / grading, 0.125, 8.0);
  field.emplace(points, next, spacing, SpacingField::Slopes{0.25 * steepness, 1.5 * steepness});
  const std::vector<giPoint2> grid = hex_grid_points(points, next, spacing, expected);
  meter.expect(20, 60, 2.0 * static_cast<double>(grid.size()));
  if (!insert_grid_points(*mesh, *field, grid, meter)) return at2_interrupted;
  meter.expect(60, 100, 2.0 * expected + 10.0 * static_cast<double>(points.size()));
  const at2PlaneError error = refine_triangles(*mesh, *field, meter);
  has_interior = error == at2_success;
  return error;
}

// --- the class
// --------------------------------------------------------------------------------------------------------------------

at2Plane::at2Plane(const giBox2& box, double spacing, double grading)
    : box_(box), spacing_(spacing), grading_(grading) {}
at2Plane::~at2Plane() = default;

void at2Plane::set_box(const giBox2& box) {
  box_ = box;
  work_.reset();
}

void at2Plane::add_edge(int a, int b) {
  edges_.push_back({a, b});
  work_.reset();
}

WorkMeter at2Plane::start_operation(const char* message, void* data) {
  const bool stops = progress_feedback(0, 0, message, data) != 0;
  WorkMeter meter([this, message, data](int percent) { return progress_feedback(1, percent, message, data); });
  if (stops) meter.stop();
  return meter;
}

at2PlaneError at2Plane::read_nodes(Work& work) {
  std::vector<std::pair<int, int>> edges;
  edges.reserve(edges_.size());
  for (const Edge& edge : edges_) edges.emplace_back(edge.start, edge.end);
  const BoundaryLoops::Fault fault = work.loops.build(std::move(edges));
  if (fault == BoundaryLoops::Fault::open) return at2_open_loop;
  if (fault == BoundaryLoops::Fault::repeated) return at2_repeated_node;

  bool finite = is_finite(box_.min()) && is_finite(box_.max());
  bool contained = true;
  double largest = 0.0;
  for (int i = 0; i < work.loops.node_count(); ++i) {
    const giPoint2 p = position(work.loops.number(i));
    work.points.push_back(p);
    work.next.push_back(work.loops.next(i));
    finite = finite && is_finite(p);
    contained = contained && p.x >= box_.min().x && p.x <= box_.max().x && p.y >= box_.min().y && p.y <= box_.max().y;
    largest = std::max({largest, std::fabs(p.x), std::fabs(p.y)});
  }
  if (!finite) return at2_not_finite;
  if (!contained) return at2_outside_box;
  std::frexp(largest, &work.exponent);
  for (giPoint2& p : work.points)
    p = snapped(giPoint2(std::ldexp(p.x, -work.exponent), std::ldexp(p.y, -work.exponent)));
  if (on_one_line(work.points)) return at2_zero_area;
  return has_repeats(work.points) ? at2_coincident_nodes : at2_success;
}

at2PlaneError at2Plane::prepare(WorkMeter& meter) {
  work_.reset();
  if (!(spacing_ > 0.0) || !(grading_ > 0.0)) return at2_bad_length;
  auto work = std::make_unique<Work>();
  at2PlaneError error = read_nodes(*work);
  if (error != at2_success) return error;
  meter.expect(0, 20, 2.0 * static_cast<double>(work->points.size()));
  error = work->insert_boundary(meter);
  if (error == at2_success) work_ = std::move(work);
  return error;
}

at2PlaneError at2Plane::generate_interior_nodes(void* data) try {
  WorkMeter meter = start_operation("Generating Interior Nodes", data);
  at2PlaneError error = prepare(meter);
  if (error == at2_success) {
    error =
        work_->insert_interior(std::ldexp(spacing_, -work_->exponent), std::ldexp(grading_, -work_->exponent), meter);
  }
  if (error != at2_success) work_.reset();
  return error;
} catch (const std::bad_alloc&) {
  work_.reset();
  return at2_no_memory;
}

at2PlaneError at2Plane::triangulate(void* data) try {
  WorkMeter meter = start_operation("Triangulating", data);
  at2PlaneError error = work_ != nullptr ? at2_success : prepare(meter);
  if (error == at2_success && work_->has_interior) {
    meter.expect(20, 60, 6.0 * (work_->mesh->node_count() - work_->first_interior()));
    if (!smooth_nodes(*work_->mesh, *work_->field, work_->first_interior(), meter)) error = at2_interrupted;
  }
  if (error == at2_success) {
    std::vector<int> numbers;
    error = make_nodes(meter, numbers);
    if (error == at2_success) make_triangles(meter, numbers);
  }
  work_.reset();
  return error;
} catch (const std::bad_alloc&) {
  work_.reset();
  return at2_no_memory;
}

// `numbers` gets the host's numbers by node of the mesh.
at2PlaneError at2Plane::make_nodes(WorkMeter& meter, std::vector<int>& numbers) {
  const PlanarMesh& mesh = *work_->mesh;
  numbers.assign(at(mesh.node_count()), PlanarMesh::none);
  for (int i = 0; i < work_->loops.node_count(); ++i) numbers[at(work_->mesh_nodes[at(i)])] = work_->loops.number(i);
  meter.expect(60, 75, mesh.node_count());
  if (meter.stopped()) return at2_interrupted;
  for (int node = work_->first_interior(); node < mesh.node_count(); ++node) {
    const giPoint2& p = mesh.point(node);
    const int number = make_node(giPoint2(std::ldexp(p.x, work_->exponent), std::ldexp(p.y, work_->exponent)));
    if (number < 0) return at2_node_refused;
    numbers[at(node)] = number;
    meter.step();
  }
  return at2_success;
}

void at2Plane::make_triangles(WorkMeter& meter, const std::vector<int>& numbers) {
  const PlanarMesh& mesh = *work_->mesh;
  meter.expect(75, 100, mesh.triangle_count());
  for (int t = 0; t < mesh.triangle_count(); ++t) {
    meter.step();
    if (mesh.region(t) != PlanarMesh::Region::inside) continue;
    make_triangle(numbers[at(mesh.start(3 * t))], numbers[at(mesh.start(3 * t + 1))],
                  numbers[at(mesh.start(3 * t + 2))]);
  }
}
