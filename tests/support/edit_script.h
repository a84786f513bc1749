#pragma once

#include <ostream>
#include <type_traits>
#include <vector>

#include "oracles/literal_mesh.h"
#include "support/random.h"
#include "support/validator.h"

/// What a script keeps built, and what its mesh carries.
struct ScriptSetting {
  const char* name;
  bool edges;
  bool references;
  bool attributes;
  bool colours;
  bool workplane;
};

std::ostream& operator<<(std::ostream& out, const ScriptSetting& setting);

/// A small block and random edits on it: nodes lie on a coarse grid, so that edges meet, triangles repeat and nodes
/// coincide. Where a literal mesh is given, it suffers the same, and results are compared.
class EditScript {
 public:
  EditScript(const ScriptSetting& setting, std::uint64_t seed, LiteralMesh* literal = nullptr);

  /// Makes one edit. Returns its name, or null when the chosen one does not apply.
  const char* step();
  /// Number of the edits of its own.
  static int edit_count();

  /// An edit from outside: false where it does not apply.
  struct ForeignEdit {
    const char* name;
    bool (*run)(EditScript& script);
  };
  /// Lets the script make these too. A literal mesh does not suffer them.
  void add_edits(const std::vector<ForeignEdit>& foreign) { foreign_ = foreign; }

  trTriBlock block;
  Random random;
  /// What the block must be excused from, by the edits so far.
  Excuses excuses;

 private:
  using Edit = bool (EditScript::*)();
  struct NamedEdit {
    const char* name;
    Edit run;
  };
  static const NamedEdit edits[];

  giPoint3 some_point();
  int some_node() { return random.between(1, block.node_count() - 1); }
  int some_live_node();
  int some_live_element();

  void set_node_at(int i);
  void give_attributes();
  void colour_elements();
  void use_workplane();
  void build_references();
  void build_edges();

  // Makes an edit on the block and its twin; results must agree.
  template <class F>
  void on_both(F edit) {
    if constexpr (std::is_void_v<decltype(edit(block))>) {
      edit(block);
      if (literal_ != nullptr) edit(*literal_);
    } else {
      const auto result = edit(block);
      if (literal_ == nullptr) return;
      EXPECT_EQ(result, edit(*literal_));
    }
  }

  bool generate_somewhere();
  bool repeat_or_cancel_one();
  bool flip_or_generate();
  bool generate_quad();
  bool delete_one();
  bool reverse_one();
  bool split_one();
  bool rewrite_element();
  bool place_node();
  bool delete_unused_node();
  bool remove_repeats(int same, int both);
  bool remove_repeating() { return remove_repeats(1, 0); }
  bool cancel_one_of_two() { return remove_repeats(0, 0); }
  bool cancel_both() { return remove_repeats(0, 1); }
  bool merge();
  bool close_gaps();
  bool move_all();
  bool drop_collapsed();
  bool reverse_all();
  bool slice();

  ScriptSetting setting_;
  LiteralMesh* literal_;
  std::vector<ForeignEdit> foreign_;
};
