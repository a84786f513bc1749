#include "undo/boundary_edits.h"

#include "boundaries/cycle_array.h"
#include "support/interrupting_handler.h"

namespace {

// Linking ends the process where a half-edge that no element has leads to a deleted node. And meshes shall stay small.
bool allows_boundary_edits(const EditScript& script) {
  return !script.excuses.phantom_edges && !script.excuses.dangling_corners && script.block.node_count() <= 60;
}

// Some cycles, some of them with picks.
bool select_some(trCycleArray& set, Random& random) {
  double length = 0.0;
  for (int id = 0; id < set.num_boundaries(); ++id) {
    if (random.one_in(3)) continue;
    set.select_cycles({id}, 1, length, -1, intcoSet(), -1, -1);
    for (int picks = random.one_in(2) ? random.between(2, 3) : 0; picks > 0; --picks) {
      set.select_cycles({id}, 1, length, random.between(1, set.block->node_count() - 1), intcoSet(), -1, -1);
    }
  }
  return set.selection.count() > 0;
}

bool fill(EditScript& script) {
  if (!allows_boundary_edits(script)) return false;
  trCycleArray set(&script.block);
  if (!select_some(set, script.random)) return false;
  const InterruptingHandler handler(script.random.one_in(4) ? script.random.between(1, 10) : 0);
  return set.fill_holes(script.random.one_in(40)) != 0;
}

// The new nodes of a cap drop all attributes for good, so where there are some a wide spacing makes none.
bool cap(EditScript& script) {
  if (!allows_boundary_edits(script)) return false;
  trCycleArray set(&script.block);
  if (!select_some(set, script.random)) return false;
  const double spacing = script.block.node_data_size() != 0 ? 1e6 : script.random.between(0.3, 3.0);
  const InterruptingHandler handler(script.random.one_in(4) ? script.random.between(1, 40) : 0);
  const int before = script.block.element_count();
  at2PlaneError error = at2_success;
  set.cap_holes(spacing, 0.0, error, script.random.one_in(10));
  return script.block.element_count() > before;
}

}  // namespace

std::vector<EditScript::ForeignEdit> boundary_edits() {
  return {
      {"cap", cap},
      {"fill", fill},
  };
}
