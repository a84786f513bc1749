#include "support/edit_script.h"

std::ostream& operator<<(std::ostream& out, const ScriptSetting& setting) { return out << setting.name; }

EditScript::EditScript(const ScriptSetting& setting, std::uint64_t seed, LiteralMesh* literal)
    : random(seed), setting_(setting), literal_(literal) {
  for (int k = 0; k < 9; ++k) set_node_at(block.node_count());
  if (setting.attributes) give_attributes();
  for (int k = 0; k < 12; ++k) generate_somewhere();
  if (setting.colours) colour_elements();
  if (setting.workplane) use_workplane();
}

const char* EditScript::step() {
  if (setting_.references) build_references();
  if (setting_.edges) build_edges();
  const int chosen = random.below(edit_count() + static_cast<int>(foreign_.size()));
  if (chosen >= edit_count()) {
    const ForeignEdit& edit = foreign_[static_cast<std::size_t>(chosen - edit_count())];
    return edit.run(*this) ? edit.name : nullptr;
  }
  return (this->*edits[chosen].run)() ? edits[chosen].name : nullptr;
}

giPoint3 EditScript::some_point() { return giPoint3(random.below(4), random.below(4), random.below(3) * 0.5); }

int EditScript::some_live_node() {
  for (int tries = 0; tries < 100; ++tries) {
    const int i = some_node();
    if (!block.node(i).invalid) return i;
  }
  return 0;
}

int EditScript::some_live_element() {
  for (int tries = 0; tries < 100 && block.element_count() > 1; ++tries) {
    const int e = random.between(1, block.element_count() - 1);
    if (block.element(e).valid()) return e;
  }
  return 0;
}

void EditScript::set_node_at(int i) {
  const giPoint3 p = some_point();
  on_both([&](auto& mesh) { mesh.set_node(i, p); });
}

void EditScript::give_attributes() {
  block.set_node_data_size(3);
  if (literal_ != nullptr) literal_->data_size = 3;
  for (int i = 1; i < block.node_count(); ++i) {
    LiteralMesh::Tuple tuple{random.between(0, 3), {}};
    for (double& v : tuple.values) v = random.between(-1.0, 1.0);
    block.node_data(i).weight = tuple.weight;
    std::copy(tuple.values.begin(), tuple.values.end(), block.node_data(i).values);
    if (literal_ != nullptr) literal_->set_node_data(i, tuple);
  }
}

void EditScript::colour_elements() {
  for (int e = 2; e < block.element_count(); e += 2) {
    on_both([&](auto& mesh) { mesh.set_element_colour(e, 100 + e); });
  }
}

void EditScript::use_workplane() {
  const giWorkplane3 plane(giPoint3(1, 2, 3), giUnitVec3(giVector3(1, 1, 0)), giUnitVec3(giVector3(0, 0, 1)));
  block.set_workplane(ccWorkplane(plane));
  block.enable_workplane(1);
  if (literal_ == nullptr) return;
  literal_->workplane = plane;
  literal_->use_workplane = 1;
}

void EditScript::build_references() {
  on_both([](auto& mesh) { mesh.reference_elements(); });
}

void EditScript::build_edges() {
  if (!block.edges_built) excuses.phantom_edges = false;
  on_both([](auto& mesh) { mesh.build_edges(); });
}

bool EditScript::generate_somewhere() {
  const int a = some_live_node(), b = some_live_node(), c = some_live_node();
  if (a == 0 || b == 0 || c == 0) return false;
  on_both([&](auto& mesh) { return mesh.generate(a, b, c); });
  return true;
}

bool EditScript::repeat_or_cancel_one() {
  const int e = some_live_element();
  if (e == 0) return false;
  const trElement t = block.element(e);
  const int turn = random.below(3);
  const bool opposite = random.one_in(2);
  const int a = t[turn], b = t[(turn + (opposite ? 2 : 1)) % 3], c = t[(turn + (opposite ? 1 : 2)) % 3];
  on_both([&](auto& mesh) { return mesh.generate(a, b, c); });
  return true;
}

bool EditScript::flip_or_generate() {
  const int a = some_live_node(), b = some_live_node(), c = some_live_node();
  if (!block.elements_referenced || a == b || b == c || c == a || a == 0 || b == 0 || c == 0) return false;
  on_both([&](auto& mesh) { return mesh.generate3(a, b, c); });
  return true;
}

bool EditScript::generate_quad() {
  const int a = some_live_node(), b = some_live_node(), c = some_live_node(), d = some_live_node();
  if (a == 0 || b == 0 || c == 0 || d == 0) return false;
  on_both([&](auto& mesh) { return mesh.generate4(a, b, c, d); });
  return true;
}

bool EditScript::delete_one() {
  const int e = some_live_element();
  if (e == 0) return false;
  on_both([&](auto& mesh) { mesh.delete_element(e); });
  return true;
}

bool EditScript::reverse_one() {
  const int e = some_live_element();
  if (e == 0) return false;
  on_both([&](auto& mesh) { mesh.reverse_element(e); });
  return true;
}

bool EditScript::split_one() {
  const int e = some_live_element();
  if (e == 0 || block.node_count() > 60) return false;
  const trElement t = block.element(e);
  // Corners in one place have no longest edge to split.
  if (t[0] == t[1] || t[1] == t[2] || t[2] == t[0]) return false;
  on_both([&](auto& mesh) { mesh.split_element(e); });
  excuses.phantom_edges |= block.edges_built != 0;
  return true;
}

// Any corners, equal ones too, in an element that may be live, deleted, or beyond the count.
bool EditScript::rewrite_element() {
  const int a = some_live_node(), b = some_live_node(), c = some_live_node();
  if (a == 0 || b == 0 || c == 0 || block.element_count() > 80) return false;
  const int e = random.between(1, block.element_count() + 3);
  on_both([&](auto& mesh) { mesh.set_element(e, a, b, c); });
  return true;
}

bool EditScript::place_node() {
  if (block.node_count() > 60) return false;
  set_node_at(random.between(1, block.node_count() + 2));
  return true;
}

// Only nodes that no element names, or linking would end the process.
bool EditScript::delete_unused_node() {
  std::set<int> used;
  for (int e = 1; e < block.element_count(); ++e) {
    for (int k = 0; k < 3; ++k) used.insert(block.element(e)[k]);
  }
  for (int i = 1; i < block.node_count(); ++i) {
    if (used.count(i) != 0 || block.node(i).invalid) continue;
    on_both([&](auto& mesh) { mesh.delete_node(i); });
    return true;
  }
  return false;
}

bool EditScript::remove_repeats(int same, int both) {
  on_both([&](auto& mesh) { return mesh.remove_repeats(same, both); });
  return true;
}

bool EditScript::merge() {
  if (!random.one_in(4)) return false;
  const double tolerances[] = {5e-324, 0.25, 0.5, 1.0};
  const double tol = tolerances[random.below(4)];
  on_both([&](auto& mesh) { return mesh.unduplicate_nodes(tol); });
  return true;
}

bool EditScript::close_gaps() {
  on_both([](auto& mesh) { mesh.renumber(); });
  return block.node_count() > 4;
}

bool EditScript::move_all() {
  const giXform3 x = giXform3::translation(giVector3(1, -1, 0));
  on_both([&](auto& mesh) { mesh.transform(x); });
  return true;
}

bool EditScript::drop_collapsed() {
  on_both([](auto& mesh) { mesh.delete_collapsed_elements(); });
  return true;
}

bool EditScript::reverse_all() {
  on_both([](auto& mesh) { mesh.reverse(); });
  return true;
}

// Through a node, or beside one, so that all ways occur in which a triangle can lie to the plane.
bool EditScript::slice() {
  const int i = some_live_node();
  if (i == 0 || !random.one_in(4)) return false;
  const gi_Axis axis = static_cast<gi_Axis>(random.below(3));
  const int side = random.below(2);
  const double beside[] = {0.0, 0.0, 0.25, -0.25, 1e-11};
  const double value = block.check_use_workplane(block.point(i))[axis] + beside[random.below(5)];
  on_both([&](auto& mesh) { return mesh.slice(axis, side, value, 1e-10); });
  return true;
}

const EditScript::NamedEdit EditScript::edits[] = {
    {"generate", &EditScript::generate_somewhere},
    {"twin", &EditScript::repeat_or_cancel_one},
    {"generate3", &EditScript::flip_or_generate},
    {"generate4", &EditScript::generate_quad},
    {"delete", &EditScript::delete_one},
    {"reverse one", &EditScript::reverse_one},
    {"split", &EditScript::split_one},
    {"set_element", &EditScript::rewrite_element},
    {"set_node", &EditScript::place_node},
    {"delete_node", &EditScript::delete_unused_node},
    {"repeating", &EditScript::remove_repeating},
    {"cancelling(0)", &EditScript::cancel_one_of_two},
    {"cancelling(1)", &EditScript::cancel_both},
    {"merge", &EditScript::merge},
    {"renumber", &EditScript::close_gaps},
    {"transform", &EditScript::move_all},
    {"collapsed", &EditScript::drop_collapsed},
    {"reverse", &EditScript::reverse_all},
    {"slice", &EditScript::slice},
};

int EditScript::edit_count() { return static_cast<int>(std::size(edits)); }
