#include "mesh/tri_block.h"

#include <cfloat>

#include "mesh/hub_edges.h"
#include "mesh/memory_guard.h"
#include "progress/progress.h"

giVector3 tr_no_direction() { return giVector3(-DBL_MAX, 0.0, 0.0); }

trTriBlock::trTriBlock() : hubs_(new HubEdges) {
  check_out(nodes_feature_);
  check_out(elements_feature_);
  check_out(points_feature_);
  nodes_ = &nodes_feature_.data()->nodes;
  elements_ = &elements_feature_.data()->triangles;
  points_ = &points_feature_.data()->points;
  const coMemoryScope scope;  // there is no block without its first pages
  clear();
}

trTriBlock::~trTriBlock() = default;

void trTriBlock::clear() {
  nodes_->start_anew();
  elements_->start_anew();
  points_->start_anew();
  init_node(0);
  node(0).set_invalid();
  (*elements_)[0] = trElement();
  set_node_data_size(0);
  remove(giLinkArrcoFeature());
  remove(colours_feature_);
  colours_feature_.set_invalid();
  colours_ = nullptr;
  ++edit_count_;
  reset_derived_state();
  alter(1);
  elements_referenced = 1;  // there is nothing that a list could lack
}

void trTriBlock::init_node(int i) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { init_node(i); });
  make_room_for_node(i);
  giPoint3& p = (*points_)[i];
  (*nodes_)[i].coords = &p;
}

// Both arrays grow, or neither.
void trTriBlock::make_room_for_node(int i) {
  const auto has_room = [i](auto& array) { return (i >> array.page_shift()) < array.pages() || array.get_block(i >> array.page_shift()); };
  if (!has_room(*points_) || !has_room(*nodes_)) throw std::bad_alloc();
}

// Slots behind a count that was cut still hold what they held: all of them become deleted elements.
trElement& trTriBlock::access_element(int e) {
  const int before = element_count();
  if (e >= before && !coMemoryScope::is_open()) tr_guarded(this, [&] { grow_elements(e); });
  if (e >= element_count()) grow_elements(e);
  for (int k = before; k <= e && k < element_count(); ++k) element(k).set(0, 0, 0);
  return element(e);
}

// Raises the count to hold e; slots that were never written become deleted elements.
void trTriBlock::grow_elements(int e) {
  const int before = element_count();
  if (!elements_->expand(e + 1)) throw std::bad_alloc();
  for (int k = before; k <= e; ++k) {
    if ((*elements_)[k][0] == UNSET_ELEMENT) element(k).set(0, 0, 0);
  }
}

trIntListIT trTriBlock::node_elements(int i) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, trIntListIT(node(i).elements), [&] { return node_elements(i); });
  reference_elements();
  return trIntListIT(node(i).elements);
}

int trTriBlock::valid_nodes() const {
  int n = 0;
  for (int i = 0; i < node_count(); ++i) {
    if (tr_interrupt()) return 0;
    n += !node(i).invalid;
  }
  return n;
}

int trTriBlock::valid_elements() const {
  int n = 0;
  for (int e = 0; e < element_count(); ++e) {
    if (tr_interrupt()) return 0;
    n += element(e).valid();
  }
  return n;
}

void trTriBlock::set_node_data_size(int n) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { set_node_data_size(n); });
  normals_built = 0;  // attributes may hold the normals
  if (n != 0) {
    check_out(node_data_feature_);
    node_data_ = node_data_feature_.data();
    node_data_->set_size(n);
    return;
  }
  if (node_data_ == nullptr) return;
  remove(node_data_feature_);
  node_data_feature_.set_invalid();
  node_data_ = nullptr;
}

void trTriBlock::set_element_colour(int e, int colour) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { set_element_colour(e, colour); });
  if (colours_ == nullptr) {
    check_out(colours_feature_);
    colours_ = colours_feature_.data();
  }
  colours_->set_colour(e, colour);
}

void trTriBlock::clear_colours() {
  if (colours_ == nullptr) return;
  for (int e = 0; e < element_count(); ++e) colours_->set_colour(e, NO_COLOUR);
}

const giBox3& trTriBlock::box() const {
  if (box_.is_empty()) self()->compute_box();
  return box_;
}

void trTriBlock::compute_box() {
  for (int i = 1; i < node_count(); ++i) {
    if (tr_interrupt()) {
      box_.reset();
      return;
    }
    if (!node(i).invalid) box_.merge(node_in_workplane(i));
  }
}

void trTriBlock::alter(int geometry) {
  edges_built = 0;
  mark_changed();
  undup_tol = 0.0;
  if (!geometry) return;
  box_.reset();
  ++geometry_revision_;
}

void trTriBlock::force_changed_status(int value) {
  if (value) mark_changed();
  changed = value;
}

void trTriBlock::mark_changed() {
  changed = 1;
  ++topology_revision_;
}

void trTriBlock::reset_derived_state() {
  elements_referenced = 0;
  normals_built = 0;
}

void trTriBlock::enable_workplane(int on) {
  if (use_workplane != on) {
    box_.reset();
    ++geometry_revision_;
  }
  use_workplane = on;
}

void trTriBlock::set_workplane(const ccWorkplane& plane) {
  workplane.set_workplane(plane.workplane());
  box_.reset();
  ++geometry_revision_;
}
