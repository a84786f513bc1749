// Random edits in random brackets, then random walks of undo and redo: every state that was left must come back to the
// last bit, and all that derives from it must be what a block has that was never anything else.

#include <gtest/gtest.h>

#include "support/block_snapshot.h"
#include "support/captured_output.h"
#include "support/edit_script.h"
#include "undo/boundary_edits.h"
#include "undo/undo_hist.h"

namespace {

using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;

AssertionResult derives_like(const trTriBlock& block, const trTriBlock& fresh) {
  if (listed_free_edges(block) != listed_free_edges(fresh)) return AssertionFailure() << "the free edges differ";
  for (int i = 1; i < fresh.node_count(); ++i) {
    if (entries(block.node(i).elements) != entries(fresh.node(i).elements)) {
      return AssertionFailure() << "the elements of node " << i << " differ";
    }
    const giVector3& n = block.node_normal(i);
    const giVector3& m = fresh.node_normal(i);
    if (n.x() != m.x() || n.y() != m.y() || n.z() != m.z()) return AssertionFailure() << "the normal of node " << i;
  }
  if (block.box().min() != fresh.box().min() || block.box().max() != fresh.box().max()) {
    return AssertionFailure() << "the box differs";
  }
  return AssertionSuccess();
}

void derive_all(trTriBlock& block) {
  block.build_edges();
  block.reference_elements();
  block.compute_node_normals();
}

class UndoWalk : public testing::TestWithParam<ScriptSetting> {
 protected:
  void begin(std::uint64_t seed) {
    history_.reset();
    script_ = std::make_unique<EditScript>(GetParam(), seed);
    script_->add_edits(boundary_edits());
    history_ = std::make_unique<trUndoHist>(&script_->block);
    states_.assign(1, BlockSnapshot(script_->block));
  }

  // One operation of a few edits; state k + 1 is what record k leads to.
  void operate() {
    CapturedOutput output;
    const trTriBlock& block = script_->block;
    const int nodes = block.node_count(), valid_nodes = block.valid_nodes();
    history_->start("operation");
    for (int k = script_->random.between(1, 5); k > 0; --k) {
      const char* const edit = script_->step();
      if (edit != nullptr) ++done_[edit];
    }
    if (!history_->finish()) {
      // Renumbering that only cuts deleted numbers off the end leaves no record.
      const bool only_cut = block.node_count() < nodes && block.valid_nodes() == valid_nodes;
      if (only_cut) states_[static_cast<std::size_t>(history_->current()) + 1] = BlockSnapshot(block);
      return;
    }
    states_.resize(static_cast<std::size_t>(history_->current()) + 1, states_.front());
    states_.emplace_back(script_->block);
  }

  void walk() {
    for (int steps = script_->random.between(1, 12); steps > 0 && !HasFatalFailure(); --steps) {
      const bool back = history_->current() == history_->last() || script_->random.one_in(2);
      if (back ? history_->current() < 0 : history_->current() == history_->last()) continue;
      back ? history_->undo() : history_->redo();
      ++(back ? undone_ : redone_);
      check();
    }
  }

  void check() {
    trTriBlock& block = script_->block;
    const BlockSnapshot& state = states_[static_cast<std::size_t>(history_->current()) + 1];
    ASSERT_EQ(state.difference(BlockSnapshot(block)), "");
    ASSERT_TRUE(is_sound(block, script_->excuses));
    if (script_->random.one_in(2)) return;  // the next step then starts with nothing built
    trTriBlock fresh;
    fresh.set_workplane(block.workplane);
    fresh.enable_workplane(block.use_workplane);
    state.rebuild(fresh);
    fresh.alter(1);
    fresh.elements_referenced = 0;
    derive_all(fresh);
    derive_all(block);
    script_->excuses.phantom_edges = false;
    ASSERT_TRUE(derives_like(block, fresh));
    ASSERT_TRUE(is_sound(block));
  }

  std::unique_ptr<EditScript> script_;
  std::unique_ptr<trUndoHist> history_;
  std::vector<BlockSnapshot> states_;
  std::map<std::string, int> done_;
  int undone_ = 0;
  int redone_ = 0;
};

TEST_P(UndoWalk, RestoresEveryState) {
  for (std::uint64_t seed = 1; seed <= 40 && !HasFailure(); ++seed) {
    begin(seed);
    for (int k = 0; k < 25 && !HasFatalFailure(); ++k) {
      operate();
      if (script_->random.one_in(3)) walk();
    }
    while (history_->current() >= 0 && !HasFatalFailure()) {
      history_->undo();
      check();
    }
    ASSERT_FALSE(HasFailure()) << "script " << seed;
  }
  EXPECT_EQ(done_.size(), static_cast<std::size_t>(EditScript::edit_count()) + boundary_edits().size());
  for (const auto& [edit, times] : done_) EXPECT_GE(times, 20) << edit;
  EXPECT_GE(undone_, 400);
  EXPECT_GE(redone_, 200);
}

const ScriptSetting settings[] = {
    {"NothingBuilt", false, false, false, false, false},
    {"BothBuilt", true, true, false, false, false},
    {"Colours", false, true, false, true, false},
    {"AttributesAndColoursBuilt", true, true, true, true, false},
    {"AttributesInAWorkplane", false, true, true, false, true},
};

INSTANTIATE_TEST_SUITE_P(Settings, UndoWalk, testing::ValuesIn(settings),
                         [](const auto& param_info) { return std::string(param_info.param.name); });

}  // namespace
