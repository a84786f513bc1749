#include <cfloat>
#include <cmath>

#include "mesh/hub_edges.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"

namespace {

// The largest double marks an unset corner and minus the largest an invalid point; a coordinate must be neither.
double storable(double x) { return std::fabs(x) == DBL_MAX ? std::nextafter(x, 0.0) : x; }

giPoint3 storable(const giPoint3& p) { return giPoint3(storable(p.x), storable(p.y), storable(p.z)); }

}  // namespace

int trTriBlock::generate_node(const giPoint3& p, const giVector3& n, int adjust) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return generate_node(p, n, adjust); });
  set_node_data_size(0);
  return generate_node_private(p, n, adjust);
}

int trTriBlock::generate_node_private(const giPoint3& p, const giVector3& n, int adjust) {
  giPoint3 place = p;
  if (adjust) apply_curvature_adjust_on_coords(p, n, place);
  const int i = node_count();
  set_node(i, place);
  return i;
}

int trTriBlock::interpolate_node(int a, int b, double t, const giVector3& n) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return interpolate_node(a, b, t, n); });
  const giPoint3 from = node_in_workplane(a);
  const giPoint3 to = node_in_workplane(b);
  const int made = generate_node_private(check_unapply_workplane(gi_interpolate(from, to, t)), n, 1);
  if (node_data_ == nullptr) return made;
  node_data(made);  // grows first: a growing array does not move tuples, but the operands must exist too
  const trNodeDataTuple& first = node_data(a);
  const trNodeDataTuple& second = node_data(b);
  trNodeDataTuple& tuple = node_data(made);
  for (int k = 0; k < node_data_size() && k < trNodeDataTuple::max_values; ++k) {
    tuple.values[k] = (1.0 - t) * first.values[k] + t * second.values[k];
  }
  tuple.weight = 1;
  return made;
}

void trTriBlock::set_node(int i, const giPoint3& p) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { set_node(i, p); });
  report_node(i);
  for (int k = node_count(); k < i; ++k) {
    init_node(k);
    report_node(k);
    node(k).set_invalid();
  }
  place_node(i, p);
}

// The reported part of set_node. Lists whose flag is set stay, so that derived topology survives a mere move.
void trTriBlock::place_node(int i, const giPoint3& p) {
  if (i >= node_count() || node(i).coords == nullptr) init_node(i);
  trNode& n = node(i);
  if (n.invalid || !edges_built) {
    n.a_edges.clear();
    n.d_edges.clear();
  }
  if (n.invalid || !elements_referenced) hubs_->disregard([&n] { n.elements.clear(); });
  *n.coords = storable(p);
  n.invalid = 0;
  undup_tol = 0.0;
  box_.reset();
  ++geometry_revision_;
}

void trTriBlock::delete_node(int i) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { delete_node(i); });
  report_node(i);
  hubs_->forget(i);
  hubs_->disregard([&] { node(i).set_invalid(); });
}

int trTriBlock::generate(int a, int b, int c) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, -1, [&] { return generate(a, b, c); });
  if (a == b || b == c || c == a) return -1;
  const int e = element_count();
  set_element(e, a, b, c);
  return e;
}

void trTriBlock::set_element(int e, int a, int b, int c) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { set_element(e, a, b, c); });
  report_element(e);
  const int before = element_count();
  if (e >= before) {
    grow_elements(e);
    for (int k = before; k < e; ++k) {
      if ((*elements_)[k][0] == 0) continue;
      report_element(k);
      element(k).set(0, 0, 0);
    }
  } else if (element(e).valid()) {
    delete_element(e);
  }
  write_element(e, a, b, c);
}

// Writes the corners and enters the element in the lists that are current.
void trTriBlock::write_element(int e, int a, int b, int c) {
  element(e).set(a, b, c);
  if (elements_referenced) enter_in_lists(e);
  if (edges_built) link_element(a, b, c);
}

void trTriBlock::delete_element(int e) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { delete_element(e); });
  report_element(e);
  trElement& t = element(e);
  if (!t.valid()) return;
  if (edges_built) unlink_element(t[0], t[1], t[2]);
  t.set(0, 0, 0);
}

void trTriBlock::reverse_element(int e) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { reverse_element(e); });
  report_element(e);
  trElement& t = element(e);
  const int a = t[0];
  const int b = t[1];
  const int c = t[2];
  const bool linked = edges_built && t.valid();
  if (linked) unlink_element(a, b, c);
  t.set(a, c, b);
  if (linked) link_element(a, c, b);
  mark_changed();
}

// Node i, whose slot there is room for, as `set_node` of a new number leaves it.
inline trNode& trTriBlock::put_new_node(int i, const giPoint3& p) {
  giPoint3& place = (*points_)[i];
  trNode& fresh = (*nodes_)[i];
  place = storable(p);
  fresh.coords = &place;
  fresh.invalid = 0;
  fresh.a_edges.clear();
  fresh.d_edges.clear();
  fresh.elements.clear();
  return fresh;
}

// What so many new nodes make stale.
inline void trTriBlock::note_new_nodes(int count) {
  undup_tol = 0.0;
  box_.reset();
  edit_count_ += count;
  ++geometry_revision_;
}

void trTriBlock::append_facet(const giPoint3 corners[3]) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { append_facet(corners); });
  const int n = node_count();
  const int e = element_count();
  if (undo != nullptr || edges_built || !elements_referenced) {
    for (int k = 0; k < 3; ++k) set_node(n + k, corners[k]);
    set_element(e, n, n + 1, n + 2);
    return;
  }
  make_room_for_node(n + 2);
  for (int k = 0; k < 3; ++k) put_new_node(n + k, corners[k]).elements.insert_front(e);
  (*elements_)[e] = trElement(n, n + 1, n + 2);
  note_new_nodes(3);
  ++edit_count_;
}

void trTriBlock::append_node(const giPoint3& p) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { append_node(p); });
  const int i = node_count();
  if (undo != nullptr || edges_built) return set_node(i, p);
  if (!points_->has_room() || !nodes_->has_room()) make_room_for_node(i);
  put_new_node(i, p);
  note_new_nodes(1);
}

// Exactly `append_node` of each.
void trTriBlock::append_points(const giPoint3coPageArr& points) {
  const int first = node_count();
  if (undo != nullptr || edges_built) {
    for (int k = 0; k < points.count(); ++k) set_node(first + k, points.at(k));
    return;
  }
  if (points.count() > 0) make_room_for_node(first + points.count() - 1);
  for (int k = 0; k < points.count(); ++k) put_new_node(first + k, points.at(k));
  note_new_nodes(points.count());
}

// A mesh from outside makes the element lists stale in the end; they need not follow each triangle.
void trTriBlock::begin_triangles() { elements_referenced = 0; }

void trTriBlock::append_element(int a, int b, int c) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { append_element(a, b, c); });
  const int e = element_count();
  if (undo != nullptr || edges_built) return set_element(e, a, b, c);
  if (!elements_->has_room() && !elements_->expand(e + 1)) throw std::bad_alloc();
  (*elements_)[e] = trElement(a, b, c);
  if (elements_referenced) enter_in_lists(e);
  ++edit_count_;
}
