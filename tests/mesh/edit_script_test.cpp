// Random scripts of edits, each step checked three ways: the invariants of the block, the literal mesh entry by entry
// (list orders and reports to the journal included), and whether the journal could take the script back. After that,
// what derives from the block must be what a block has that was never anything else.

#include <gtest/gtest.h>

#include "oracles/literal_mesh.h"
#include "support/journal_recorder.h"
#include "support/random.h"
#include "support/validator.h"

namespace {

using testing::AssertionFailure;
using testing::AssertionResult;

// What a script keeps built, and what its mesh carries.
struct ScriptSetting {
  const char* name;
  bool edges;
  bool references;
  bool attributes;
  bool colours;
  bool workplane;
};

std::ostream& operator<<(std::ostream& out, const ScriptSetting& setting) { return out << setting.name; }

// A small block, its literal twin, and random edits on both, results of which are compared: nodes lie on a coarse grid,
// so that edges meet, triangles repeat and nodes coincide.
class EditScript {
 public:
  EditScript(const ScriptSetting& setting, std::uint64_t seed) : random(seed), setting_(setting) {
    for (int k = 0; k < 9; ++k) set_node_at(block.node_count());
    if (setting.attributes) give_attributes();
    for (int k = 0; k < 12; ++k) generate_somewhere();
    if (setting.colours) colour_elements();
    if (setting.workplane) use_workplane();
    literal.reports.clear();
  }

  // Makes one edit. Returns its name, or null when the chosen one does not apply.
  const char* step() {
    if (setting_.references) build_references();
    if (setting_.edges) build_edges();
    const NamedEdit& chosen = edits[random.below(edit_count())];
    return (this->*chosen.run)() ? chosen.name : nullptr;
  }
  static int edit_count() { return static_cast<int>(std::size(edits)); }

  trTriBlock block;
  LiteralMesh literal;
  Random random;
  Excuses excuses;  // what the block must be excused from, by the edits so far

 private:
  using Edit = bool (EditScript::*)();
  struct NamedEdit {
    const char* name;
    Edit run;
  };
  static const NamedEdit edits[19];

  template <class F>
  void on_both(F edit) {
    if constexpr (std::is_void_v<decltype(edit(block))>) {
      edit(block);
      edit(literal);
    } else {
      EXPECT_EQ(edit(block), edit(literal));
    }
  }

  template <class F>
  bool on_all(F edit) {
    on_both(edit);
    return true;
  }
  template <class F>
  bool on_a_live_element(F edit) {
    const int e = some_live_element();
    if (e != 0) on_both([&](auto& mesh) { edit(mesh, e); });
    return e != 0;
  }

  int some_node() { return random.below(block.node_count()); }  // node 0 is never live

  giPoint3 some_point() { return giPoint3(random.below(4), random.below(4), random.below(3) * 0.5); }

  int some_live_node() {
    for (int tries = 0; tries < 100; ++tries) {
      const int i = some_node();
      if (!block.node(i).invalid) return i;
    }
    return 0;
  }

  int some_live_element() {
    for (int tries = 0; tries < 100 && block.element_count() > 1; ++tries) {
      const int e = random.between(1, block.element_count() - 1);
      if (block.element(e).valid()) return e;
    }
    return 0;
  }

  void set_node_at(int i) {
    const giPoint3 p = some_point();
    on_both([&](auto& mesh) { mesh.set_node(i, p); });
  }

  void give_attributes() {
    block.set_node_data_size(3);
    literal.data_size = 3;
    for (int i = 1; i < block.node_count(); ++i) {
      LiteralMesh::Tuple tuple{random.between(0, 3), {}};
      for (double& v : tuple.values) v = random.between(-1.0, 1.0);
      block.node_data(i).weight = tuple.weight;
      std::copy(tuple.values.begin(), tuple.values.end(), block.node_data(i).values);
      literal.set_node_data(i, tuple);
    }
  }

  void colour_elements() {
    for (int e = 2; e < block.element_count(); e += 2) {
      on_both([&](auto& mesh) { mesh.set_element_colour(e, 100 + e); });
    }
  }

  void use_workplane() {
    const giWorkplane3 plane(giPoint3(1, 2, 3), giUnitVec3(giVector3(1, 1, 0)), giUnitVec3(giVector3(0, 0, 1)));
    block.set_workplane(ccWorkplane(plane));
    block.enable_workplane(1);
    literal.workplane = plane;
    literal.use_workplane = 1;
  }

  void build_references() {
    on_both([](auto& mesh) { mesh.reference_elements(); });
  }

  void build_edges() {
    if (!block.edges_built) excuses.phantom_edges = false;
    on_both([](auto& mesh) { mesh.build_edges(); });
  }

  bool generate_somewhere() {
    const int a = some_live_node(), b = some_live_node(), c = some_live_node();
    if (a == 0 || b == 0 || c == 0) return false;
    on_both([&](auto& mesh) { return mesh.generate(a, b, c); });
    return true;
  }

  bool repeat_or_cancel_one() {
    const int e = some_live_element();
    if (e == 0) return false;
    const trElement t = block.element(e);
    const int turn = random.below(3);
    const bool opposite = random.one_in(2);
    const int a = t[turn], b = t[(turn + (opposite ? 2 : 1)) % 3], c = t[(turn + (opposite ? 1 : 2)) % 3];
    on_both([&](auto& mesh) { return mesh.generate(a, b, c); });
    return true;
  }

  bool flip_or_generate() {
    const int a = some_live_node(), b = some_live_node(), c = some_live_node();
    if (!block.elements_referenced || a == b || b == c || c == a || a == 0 || b == 0 || c == 0) return false;
    on_both([&](auto& mesh) { return mesh.generate3(a, b, c); });
    return true;
  }

  bool generate_quad() {
    const int a = some_live_node(), b = some_live_node(), c = some_live_node(), d = some_live_node();
    if (a == 0 || b == 0 || c == 0 || d == 0) return false;
    on_both([&](auto& mesh) { return mesh.generate4(a, b, c, d); });
    return true;
  }

  bool split_one() {
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
  bool rewrite_element() {
    const int a = some_live_node(), b = some_live_node(), c = some_live_node();
    if (a == 0 || b == 0 || c == 0 || block.element_count() > 80) return false;
    const int e = random.between(1, block.element_count() + 3);
    on_both([&](auto& mesh) { mesh.set_element(e, a, b, c); });
    return true;
  }

  bool place_node() {
    if (block.node_count() > 60) return false;
    set_node_at(random.between(1, block.node_count() + 2));
    return true;
  }

  // Only nodes that no element names, or linking would end the process.
  bool delete_unused_node() {
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

  bool merge() {
    if (!random.one_in(4)) return false;
    const double tolerances[] = {5e-324, 0.25, 0.5, 1.0, 0.0, -1.0, std::nan("")};
    const double tol = tolerances[random.below(7)];
    on_both([&](auto& mesh) { return mesh.unduplicate_nodes(tol); });
    return true;
  }

  // Through a node, or beside one, so that all ways occur in which a triangle can lie to the plane.
  bool slice() {
    const int i = some_live_node();
    if (i == 0 || !random.one_in(4)) return false;
    const gi_Axis axis = static_cast<gi_Axis>(random.below(3));
    const int side = random.below(2);
    const double beside[] = {0.0, 0.0, 0.25, -0.25, 1e-11};
    const double value = block.check_use_workplane(block.point(i))[axis] + beside[random.below(5)];
    on_both([&](auto& mesh) { return mesh.slice(axis, side, value, 1e-10); });
    return true;
  }

  bool delete_one() {
    return on_a_live_element([](auto& mesh, int e) { mesh.delete_element(e); });
  }
  bool reverse_one() {
    return on_a_live_element([](auto& mesh, int e) { mesh.reverse_element(e); });
  }
  bool move_all() {
    return on_all([](auto& mesh) { mesh.transform(giXform3::translation(giVector3(1, -1, 0))); });
  }
  bool remove_repeating() {
    return on_all([](auto& mesh) { return mesh.remove_repeats(1, 0); });
  }
  bool cancel_one_of_two() {
    return on_all([](auto& mesh) { return mesh.remove_repeats(0, 0); });
  }
  bool cancel_both() {
    return on_all([](auto& mesh) { return mesh.remove_repeats(0, 1); });
  }
  bool drop_collapsed() {
    return on_all([](auto& mesh) { mesh.delete_collapsed_elements(); });
  }
  bool reverse_all() {
    return on_all([](auto& mesh) { mesh.reverse(); });
  }
  bool close_gaps() {
    return on_all([](auto& mesh) { mesh.renumber(); }) && block.node_count() > 4;
  }

  ScriptSetting setting_;
};

const EditScript::NamedEdit EditScript::edits[19] = {
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

// What a mark of change makes anew must be what was there.
AssertionResult normals_are_up_to_date(trTriBlock& block) {
  std::vector<giVector3> kept;
  block.compute_node_normals();
  for (int i = 0; i < block.node_count(); ++i) kept.push_back(block.node_normal(i));
  block.force_changed_status(1);
  block.compute_node_normals();
  for (int i = 0; i < block.node_count(); ++i) {
    if ((block.node_normal(i) - kept[static_cast<std::size_t>(i)]).length() != 0.0)
      return AssertionFailure() << "the normal of node " << i << " was kept";
  }
  return testing::AssertionSuccess();
}

AssertionResult derives_like_a_fresh_one(trTriBlock& block) {
  trTriBlock fresh;
  fresh.set_workplane(block.workplane);
  fresh.enable_workplane(block.use_workplane);
  BlockSnapshot(block).rebuild(fresh);
  fresh.alter(1);
  fresh.elements_referenced = 0;
  for (trTriBlock* mesh : {&block, &fresh}) {
    mesh->build_edges();
    mesh->reference_elements();
    mesh->compute_node_normals();
  }
  if (listed_free_edges(block) != listed_free_edges(fresh)) return AssertionFailure() << "the free edges differ";
  for (int i = 1; i < fresh.node_count(); ++i) {
    if (entries(block.node(i).elements) != entries(fresh.node(i).elements))
      return AssertionFailure() << "the elements of node " << i << " differ";
    if ((block.node_normal(i) - fresh.node_normal(i)).length() != 0.0)
      return AssertionFailure() << "the normal of node " << i << " differs";
  }
  if (block.box().min() != fresh.box().min() || block.box().max() != fresh.box().max())
    return AssertionFailure() << "the box differs";
  return is_sound(block);
}

class EditScriptTest : public testing::TestWithParam<ScriptSetting> {};

const ScriptSetting settings[] = {
    {"NothingBuilt", false, false, false, false, false},
    {"EdgesBuilt", true, false, false, false, false},
    {"ElementsReferenced", false, true, false, false, false},
    {"BothBuilt", true, true, false, false, false},
    {"BothBuiltWithAttributesAndColours", true, true, true, true, false},
    {"AttributesInAWorkplane", false, false, true, false, true},
};

TEST_P(EditScriptTest, KeepsEveryListAndReportsEveryChange) {
  std::map<std::string, int> done;
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    EditScript script(GetParam(), seed);
    JournalRecorder journal(script.block);
    for (int k = 0; k < 40; ++k) {
      if (GetParam().references) script.block.compute_node_normals();
      const char* edit = script.step();
      if (edit == nullptr) continue;
      ++done[edit];
      ASSERT_EQ(difference(script.block, script.literal), "")
          << "after " << edit << ", step " << k << " of script " << seed;
      ASSERT_TRUE(is_sound(script.block, script.excuses))
          << "after " << edit << ", step " << k << " of script " << seed;
      ASSERT_TRUE(journal.reports() == JournalRecorder::sorted(script.literal.reports))
          << "after " << edit << ", step " << k << " of script " << seed;
    }
    ASSERT_TRUE(normals_are_up_to_date(script.block)) << "script " << seed;
    ASSERT_TRUE(journal.restores_the_start()) << "script " << seed;
    ASSERT_TRUE(derives_like_a_fresh_one(script.block)) << "script " << seed;
  }
  // Every edit must have had its turn often enough to mean something.
  EXPECT_EQ(static_cast<int>(done.size()), EditScript::edit_count());
  for (const auto& [edit, times] : done) EXPECT_GE(times, 12) << edit;
}

INSTANTIATE_TEST_SUITE_P(Settings, EditScriptTest, testing::ValuesIn(settings),
                         [](const auto& param_info) { return std::string(param_info.param.name); });

}  // namespace
