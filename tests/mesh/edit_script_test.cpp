// Random scripts of edits, each step checked three ways: the invariants of the block, the literal mesh entry by entry
// (list orders and reports to the journal included), and whether the journal could take the script back.

#include <gtest/gtest.h>

#include "oracles/literal_mesh.h"
#include "support/journal_recorder.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

struct Setting {
  const char* name;
  bool edges;
  bool references;
  bool attributes;
  bool colours;
  bool workplane;
};

std::ostream& operator<<(std::ostream& out, const Setting& s) { return out << s.name; }

// The block and its literal twin, and one random edit at a time on both.
class Script {
 public:
  Script(const Setting& setting, std::uint64_t seed) : setting_(setting), random_(seed) {
    make_points();
    if (setting.attributes) give_attributes();
    for (int k = 0; k < 12; ++k) generate_somewhere();
    if (setting.colours) colour_elements();
    if (setting.workplane) use_workplane();
  }

  // Returns the name of the edit, or null when the chosen one does not apply.
  const char* step() {
    if (setting_.references) build_references();
    if (setting_.edges) build_edges();
    const int choice = random_.below(static_cast<int>(std::size(edits)));
    return (this->*edits[choice].run)() ? edits[choice].name : nullptr;
  }

  trTriBlock block;
  LiteralMesh literal;
  Excuses excuses;

 private:
  using Edit = bool (Script::*)();
  static const struct NamedEdit {
    const char* name;
    Edit run;
  } edits[18];

  // Few places, so that edges meet and triangles repeat; some nodes coincide.
  giPoint3 some_point() { return giPoint3(random_.below(4), random_.below(4), random_.below(3) * 0.5); }
  int some_node() { return random_.between(1, block.node_count() - 1); }
  int some_live_node() {
    for (int tries = 0; tries < 100; ++tries) {
      const int i = some_node();
      if (!block.node(i).invalid) return i;
    }
    return 0;
  }
  int some_live_element() {
    for (int tries = 0; tries < 100 && block.element_count() > 1; ++tries) {
      const int e = random_.between(1, block.element_count() - 1);
      if (block.element(e).valid()) return e;
    }
    return 0;
  }

  void make_points() {
    for (int k = 0; k < 9; ++k) set_node_at(block.node_count());
  }
  void set_node_at(int i) {
    const giPoint3 p = some_point();
    block.set_node(i, p);
    literal.set_node(i, p);
  }
  void give_attributes() {
    block.set_node_data_size(3);
    literal.data_size = 3;
    for (int i = 1; i < block.node_count(); ++i) {
      LiteralMesh::Tuple tuple{random_.between(0, 3), {}};
      for (double& v : tuple.values) v = random_.between(-1.0, 1.0);
      block.node_data(i).weight = tuple.weight;
      std::copy(tuple.values.begin(), tuple.values.end(), block.node_data(i).values);
      literal.set_node_data(i, tuple);
    }
  }
  void colour_elements() {
    for (int e = 2; e < block.element_count(); e += 2) {
      block.set_element_colour(e, 100 + e);
      literal.set_element_colour(e, 100 + e);
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
    block.reference_elements();
    literal.reference_elements();
  }
  void build_edges() {
    if (!block.edges_built) excuses.phantom_edges = false;
    block.build_edges();
    literal.build_edges();
  }

  bool generate_somewhere() {
    const int a = some_live_node(), b = some_live_node(), c = some_live_node();
    if (a == 0 || b == 0 || c == 0) return false;
    EXPECT_EQ(block.generate(a, b, c), literal.generate(a, b, c));
    return true;
  }
  bool repeat_or_cancel_one() {
    const int e = some_live_element();
    if (e == 0) return false;
    const trElement t = block.element(e);
    const int turn = random_.below(3);
    const bool opposite = random_.one_in(2);
    const int a = t[turn], b = t[(turn + (opposite ? 2 : 1)) % 3], c = t[(turn + (opposite ? 1 : 2)) % 3];
    EXPECT_EQ(block.generate(a, b, c), literal.generate(a, b, c));
    return true;
  }
  bool flip_or_generate() {
    const int a = some_live_node(), b = some_live_node(), c = some_live_node();
    if (!block.elements_referenced || a == b || b == c || c == a || a == 0 || b == 0 || c == 0) return false;
    EXPECT_EQ(block.generate3(a, b, c), literal.generate3(a, b, c));
    return true;
  }
  bool generate_quad() {
    const int a = some_live_node(), b = some_live_node(), c = some_live_node(), d = some_live_node();
    if (a == 0 || b == 0 || c == 0 || d == 0) return false;
    EXPECT_EQ(block.generate4(a, b, c, d), literal.generate4(a, b, c, d));
    return true;
  }
  bool delete_one() { return on_element(&trTriBlock::delete_element, &LiteralMesh::delete_element); }
  bool reverse_one() { return on_element(&trTriBlock::reverse_element, &LiteralMesh::reverse_element); }
  bool split_one() {
    const int e = some_live_element();
    if (e == 0 || block.node_count() > 60) return false;
    const trElement t = block.element(e);
    // Corners in one place have no longest edge to split.
    if (t[0] == t[1] || t[1] == t[2] || t[2] == t[0]) return false;
    block.split_element(e);
    literal.split_element(e);
    excuses.phantom_edges |= block.edges_built != 0;
    return true;
  }
  bool on_element(void (trTriBlock::*real)(int), void (LiteralMesh::*plain)(int)) {
    const int e = some_live_element();
    if (e == 0) return false;
    (block.*real)(e);
    (literal.*plain)(e);
    return true;
  }
  // Any corners, equal ones too, in an element that may be live, deleted, or beyond the count.
  bool rewrite_element() {
    const int a = some_live_node(), b = some_live_node(), c = some_live_node();
    if (a == 0 || b == 0 || c == 0 || block.element_count() > 80) return false;
    const int e = random_.between(1, block.element_count() + 3);
    block.set_element(e, a, b, c);
    literal.set_element(e, a, b, c);
    return true;
  }
  bool place_node() {
    if (block.node_count() > 60) return false;
    set_node_at(random_.between(1, block.node_count() + 2));
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
      block.delete_node(i);
      literal.delete_node(i);
      return true;
    }
    return false;
  }
  bool remove_repeats(int same, int both) {
    EXPECT_EQ(block.remove_repeats(same, both), literal.remove_repeats(same, both));
    return true;
  }
  bool remove_repeating() { return remove_repeats(1, 0); }
  bool cancel_one_of_two() { return remove_repeats(0, 0); }
  bool cancel_both() { return remove_repeats(0, 1); }
  bool merge() {
    if (!random_.one_in(4)) return false;
    const double tolerances[] = {5e-324, 0.25, 0.5, 1.0};
    const double tol = tolerances[random_.below(4)];
    EXPECT_EQ(block.unduplicate_nodes(tol), literal.unduplicate_nodes(tol));
    return true;
  }
  bool close_gaps() {
    block.renumber();
    literal.renumber();
    return block.node_count() > 4;
  }
  bool move_all() {
    const giXform3 x = giXform3::translation(giVector3(1, -1, 0));
    block.transform(x);
    literal.transform(x);
    return true;
  }
  bool drop_collapsed() {
    block.delete_collapsed_elements();
    literal.delete_collapsed_elements();
    return true;
  }
  bool reverse_all() {
    block.reverse();
    literal.reverse();
    return true;
  }

  Setting setting_;
  Random random_;
};

const Script::NamedEdit Script::edits[18] = {
    {"generate", &Script::generate_somewhere},
    {"twin", &Script::repeat_or_cancel_one},
    {"generate3", &Script::flip_or_generate},
    {"generate4", &Script::generate_quad},
    {"delete", &Script::delete_one},
    {"reverse one", &Script::reverse_one},
    {"split", &Script::split_one},
    {"set_element", &Script::rewrite_element},
    {"set_node", &Script::place_node},
    {"delete_node", &Script::delete_unused_node},
    {"repeating", &Script::remove_repeating},
    {"cancelling(0)", &Script::cancel_one_of_two},
    {"cancelling(1)", &Script::cancel_both},
    {"merge", &Script::merge},
    {"renumber", &Script::close_gaps},
    {"transform", &Script::move_all},
    {"collapsed", &Script::drop_collapsed},
    {"reverse", &Script::reverse_all},
};

class EditScript : public testing::TestWithParam<Setting> {};

const Setting settings[] = {
    {"NothingBuilt", false, false, false, false, false},
    {"EdgesBuilt", true, false, false, false, false},
    {"ElementsReferenced", false, true, false, false, false},
    {"BothBuilt", true, true, false, false, false},
    {"BothBuiltWithAttributesAndColours", true, true, true, true, false},
    {"AttributesInAWorkplane", false, false, true, false, true},
};

TEST_P(EditScript, KeepsEveryListAndReportsEveryChange) {
  std::map<std::string, int> done;
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    Script script(GetParam(), seed);
    JournalRecorder journal(script.block);
    script.literal.reports.clear();
    for (int k = 0; k < 40; ++k) {
      const char* edit = script.step();
      if (edit == nullptr) continue;
      ++done[edit];
      ASSERT_EQ(difference(script.block, script.literal), "")
          << "after " << edit << ", step " << k << " of script " << seed;
      ASSERT_TRUE(is_sound(script.block, script.excuses))
          << "after " << edit << ", step " << k << " of script " << seed;
      ASSERT_EQ(journal.reports(), script.literal.reports)
          << "after " << edit << ", step " << k << " of script " << seed;
    }
    ASSERT_TRUE(journal.restores_the_start()) << "script " << seed;
  }
  // Every edit must have had its turn often enough to mean something.
  EXPECT_EQ(done.size(), 18u);
  for (const auto& [edit, times] : done) EXPECT_GE(times, 12) << edit;
}

INSTANTIATE_TEST_SUITE_P(Settings, EditScript, testing::ValuesIn(settings),
                         [](const auto& param_info) { return std::string(param_info.param.name); });

}  // namespace
