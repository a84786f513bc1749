// The order of operations: opening, closing, stepping, and what a record holds.

#include "undo/undo_hist.h"

#include <gtest/gtest.h>

#include <cfloat>

#include "support/block_snapshot.h"
#include "support/captured_output.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

template <class Edit>
int record(trUndoHist& history, const char* name, Edit edit) {
  history.start(name);
  edit(*history.triblock);
  return history.finish();
}

void reverse_first(trTriBlock& block) { block.reverse_element(1); }

std::string difference(const BlockSnapshot& snapshot, const trTriBlock& block) {
  return snapshot.difference(BlockSnapshot(block));
}

TEST(UndoHistory, StepsBetweenItsEnds) {
  BlockOf block(closed_box());
  trUndoHist history(&block);
  EXPECT_EQ(history.current(), -1);
  EXPECT_EQ(history.last(), -1);
  EXPECT_EQ(history.full_history(), 1);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(record(history, "reverse", reverse_first), 1);
  EXPECT_EQ(history.current(), 2);
  history.undo();
  history.undo();
  EXPECT_EQ(history.current(), 0);
  EXPECT_EQ(history.last(), 2);
  EXPECT_EQ(history.records[0]->applied, 0);
  EXPECT_EQ(history.records[1]->applied, 1);
  history.redo();
  EXPECT_EQ(history.current(), 1);
  EXPECT_EQ(block.undo, nullptr);
  // Closing what is not open leaves all as it is, and an operation without effect drops only what could be done again.
  EXPECT_EQ(history.finish(), 0);
  EXPECT_EQ(history.last(), 2);
  const CapturedOutput output;
  EXPECT_EQ(record(history, "idle", [](trTriBlock& b) { b.build_edges(); }), 0);
  EXPECT_EQ(history.current(), 1);
  EXPECT_EQ(history.last(), 1);
}

// After two undos a new operation takes the record of the second; the third can no longer be done again. An empty name
// leaves the name that the record had.
TEST(UndoHistory, UsesRecordsAgain) {
  BlockOf block(closed_box());
  trUndoHist history(&block);
  for (const char* name : {"first", "second", "third"}) record(history, name, reverse_first);
  const trUndo* const second = history.records[1].get();
  history.undo();
  history.undo();
  const BlockSnapshot before(block);
  record(history, "", [](trTriBlock& b) { b.delete_element(2); });
  EXPECT_EQ(history.current(), 1);
  EXPECT_EQ(history.last(), 1);
  EXPECT_EQ(history.records.count(), 3);
  EXPECT_EQ(history.records[1].get(), second);
  EXPECT_EQ(second->name, utString("second"));
  EXPECT_EQ(second->applied, 0);
  EXPECT_EQ(second->elements.count(), 1);
  CapturedOutput output;
  history.redo();
  EXPECT_EQ(output.take(), "Nothing to redo.\n");
  history.undo();
  EXPECT_EQ(difference(before, block), "");
}

// Each start forgets what was before, and says so each time once a file is known.
TEST(UndoHistory, WithoutFullHistoryKeepsOneOperation) {
  BlockOf block(closed_box());
  trUndoHist history(&block);
  history.reset("part.stl");
  CapturedOutput output;
  history.toggle_undo();
  const std::string cancelled = "Undo information for 'part.stl' has been cancelled.\n";
  EXPECT_EQ(output.take(), cancelled);
  EXPECT_EQ(history.full_history(), 0);
  for (int k = 0; k < 3; ++k) {
    record(history, "reverse", reverse_first);
    EXPECT_EQ(output.take(), cancelled);
    EXPECT_EQ(history.current(), 0);
    EXPECT_EQ(history.last(), 0);
  }
  EXPECT_EQ(history.records.count(), 1);
  history.toggle_undo();
  EXPECT_EQ(output.take(), cancelled);
  EXPECT_EQ(history.full_history(), 1);
  EXPECT_EQ(history.current(), -1);
  EXPECT_EQ(history.filename(), utString("part.stl"));
}

// A record that was closed small and goes on with thousands of entries is still taken back in one step.
TEST(UndoHistory, ResumesTheRecordAtThePosition) {
  BlockOf block(closed_box());
  trUndoHist history(&block);
  history.resume();
  EXPECT_EQ(block.undo, nullptr);
  const BlockSnapshot start(block);
  record(history, "grow", reverse_first);
  EXPECT_EQ(history.records[0]->elements.page_size(), 1);
  history.resume();
  for (int k = 0; k < 5000; ++k) block.generate(block.generate_node(giPoint3(k, 1, 2), tr_no_direction(), 0), 1, 2);
  EXPECT_EQ(history.finish(), 1);
  const BlockSnapshot end(block);
  EXPECT_EQ(history.records[0]->nodes.count(), 5000);
  EXPECT_EQ(history.records[0]->elements.count(), 5001);
  EXPECT_GE(history.records[0]->elements.page_size(), 256);
  history.undo();
  EXPECT_EQ(history.current(), -1);
  EXPECT_EQ(difference(start, block), "");
  history.redo();
  EXPECT_EQ(difference(end, block), "");
  EXPECT_TRUE(is_sound(block));
}

// What a small record does not need of its first page serves the next one: a thousand of them take no thousand pages.
TEST(UndoHistory, SmallRecordsShareAPage) {
  BlockOf block(closed_box());
  trUndoHist history(&block);
  const BlockSnapshot before(block);
  const trUndoElement* shared = nullptr;
  for (int k = 0; k < 5; ++k) {
    history.start("reverse");
    for (int e = 1; e <= 1 + k; ++e) block.reverse_element(e);
    const trUndoElement* const first = &history.records[k]->elements.at(0);
    if (k == 0) shared = first;
    EXPECT_EQ(first, shared);
    EXPECT_EQ(history.finish(), 1);
    EXPECT_NE(&history.records[k]->elements.at(0), shared);
  }
  for (int k = 0; k < 5; ++k) history.undo();
  EXPECT_EQ(difference(before, block), "");
}

// Every touch is stored; an entity that was there is stored as it was at that moment, one that is being made as absent.
TEST(UndoRecord, HoldsWhatWasBeforeEachTouch) {
  BlockOf block(closed_box());
  block.set_element_colour(1, 77);
  block.set_element_colour(2, 78);
  block.delete_node(8);
  trUndoHist history(&block);
  history.start("all kinds");
  const giPoint3 place = block.point(1);
  block.set_node(1, giPoint3(5, 5, 5));
  block.set_node(1, giPoint3(6, 6, 6));
  block.set_node(8, giPoint3(7, 7, 7));
  block.set_node(9, giPoint3(8, 8, 8));
  block.delete_element(2);
  block.set_element(2, 1, 2, 3);
  block.set_element(13, 1, 2, 3);
  const trUndo& record = *history.records[0];
  ASSERT_EQ(record.nodes.count(), 4);
  EXPECT_EQ(record.node_count, 9);
  EXPECT_EQ(record.nodes[0].point, place);
  EXPECT_EQ(record.nodes[1].point, giPoint3(5, 5, 5));
  EXPECT_EQ(record.nodes[2].index, 8);
  EXPECT_EQ(record.nodes[2].point.x, -DBL_MAX);
  EXPECT_EQ(record.nodes[3].index, 9);
  EXPECT_TRUE(record.nodes[3].point.invalid());
  EXPECT_EQ(record.nodes[3].data_index, -1);
  ASSERT_EQ(record.elements.count(), 3);
  EXPECT_EQ(record.element_count, 13);
  EXPECT_EQ(record.elements[0].colour, 78);
  EXPECT_NE(record.elements[0].element[0], 0);
  EXPECT_EQ(record.elements[1].element[0], 0);
  EXPECT_EQ(record.elements[1].colour, NO_COLOUR);
  EXPECT_EQ(record.elements[2].index, 13);
  EXPECT_EQ(record.elements[2].element[0], 0);
}

// Numbers that an undo gives up are taken again by the next operation: no list, attribute or colour of their first life
// may show.
TEST(UndoRecord, LeavesNothingBehindTheCounts) {
  BlockOf block(flat_sheet(2, 2));
  block.set_node_data_size(2);
  block.set_element_colour(1, 5);
  block.node_data(1).values[4] = 7.0;
  trUndoHist history(&block);
  record(history, "dropped", [](trTriBlock& b) { b.set_node(1, giPoint3()); });
  history.undo();
  history.start("grow");
  const int node = block.interpolate_node(1, 2, 0.5);
  block.node_data(node).values[4] = 9.0;
  block.node(node).side = 1;
  const int element = block.generate(1, node, 3);
  block.set_element_colour(element, 6);
  history.finish();
  history.undo();
  EXPECT_EQ(block.node_count(), node);
  EXPECT_EQ(block.points().count(), node);
  EXPECT_EQ(block.element_count(), element);
  block.set_node(node, giPoint3(3, 3, 3));
  EXPECT_EQ(block.generate(2, node, 4), element);
  EXPECT_EQ(block.get_element_colour(element), 5);
  EXPECT_EQ(block.node_data(node).weight, 0);
  EXPECT_EQ(block.node_data(node).values[4], 0.0);
  EXPECT_EQ(block.node(node).side, 0);
  block.reference_elements();
  EXPECT_EQ(entries(block.node(node).elements), std::vector<int>{element});
  EXPECT_TRUE(is_sound(block));
}

// Making a node through the public entry drops all attributes, which no undo brings back; nothing else is lost by that.
TEST(UndoRecord, SurvivesAttributesThatWereDropped) {
  BlockOf block(closed_box());
  block.set_node_data_size(2);
  trUndoHist history(&block);
  record(history, "move", [](trTriBlock& b) { b.transform(giXform3::translation(giVector3(0, 0, 1))); });
  record(history, "make", [](trTriBlock& b) { b.generate_node(giPoint3(), tr_no_direction(), 0); });
  history.undo();
  history.undo();
  EXPECT_EQ(block.node_data_size(), 0);
  EXPECT_EQ(block.point(1), giPoint3(0, 0, 0));
  block.set_node_data_size(2);
  history.redo();
  history.redo();
  EXPECT_EQ(block.node_count(), 10);
  EXPECT_TRUE(is_sound(block));
}

// An operation that is taken back and replaced over and over, as a host's preview does, needs no more room for
// attributes each time; the one before it keeps what it saved.
TEST(UndoRecord, GivesBackTheRoomOfDroppedAttributes) {
  BlockOf block(closed_box());
  block.set_node_data_size(1);
  for (int i = 1; i < block.node_count(); ++i) block.node_data(i).values[0] = i;
  const BlockSnapshot start(block);
  trUndoHist history(&block);
  const auto move = [](trTriBlock& b) {
    b.transform(giXform3::translation(giVector3(0, 0, 1)));
    for (int i = 1; i < b.node_count(); ++i) b.node_data(i).values[0] += 1.0;
  };
  record(history, "kept", move);
  for (int times = 0; times < 50; ++times) {
    record(history, "preview", move);
    history.undo();
    history.undo();
    history.redo();
  }
  EXPECT_LE(history.saved_data.tuples.count(), 2 * 8);
  history.undo();
  EXPECT_EQ(difference(start, block), "");
}

// Edits that no record knows are no concern of the history, but what they made above the counts must not come up again.
TEST(Undo, ForgetsWhatWasMadeOutsideOfRecords) {
  BlockOf block(closed_box());
  trUndoHist history(&block);
  record(history, "reverse", reverse_first);
  for (int k = 0; k < 3; ++k) block.generate(block.generate_node(giPoint3(k, 1, 2), tr_no_direction(), 0), 1, 2);
  history.undo();
  EXPECT_EQ(block.node_count(), 9);
  EXPECT_EQ(block.element_count(), 13);
  EXPECT_EQ(record(history, "grow",
                   [](trTriBlock& b) {
                     b.set_element(16, 1, 2, 3);
                     b.init_node(10);
                   }),
            1);
  EXPECT_EQ(history.records[0]->elements.count(), 1) << "deleted elements need no report";
  EXPECT_EQ(block.node(10).invalid, 1);
  EXPECT_TRUE(block.node(10).elements.empty());
}

// What is stored or applied while its numbers are gone lands in the numbers that the counts name, and nowhere else.
TEST(Undo, BearsABlockThatWasEmptied) {
  BlockOf block(sphere(20));
  for (int k = 0; k < 9000; ++k) block.generate(block.generate_node(giPoint3(k, 1, 2), tr_no_direction(), 0), 1, 2);
  trUndoHist history(&block);
  record(history, "delete", [](trTriBlock& b) {
    for (int e = 1; e < b.element_count(); e += 2) b.delete_element(e);
  });
  const int nodes = block.node_count();
  history.start("grow");
  for (int k = 0; k < 50; ++k) block.generate(block.generate_node(giPoint3(k, 1, 2), tr_no_direction(), 0), 1, 2);
  block.clear();
  block.set_node(8500, giPoint3(1, 1, 1));
  block.set_element(8500, 8500, 8500, 8500);
  history.finish();
  history.undo();
  EXPECT_EQ(block.node_count(), nodes);
  history.undo();
  history.redo();
  history.redo();
  EXPECT_EQ(block.node_count(), 8501);
  EXPECT_EQ(block.node(8500).invalid, 0);
}

TEST(Undo, DetachesFromTheBlockWhenTheHistoryEnds) {
  BlockOf block(closed_box());
  {
    trUndoHist history(&block);
    history.start("open");
  }
  EXPECT_EQ(block.undo, nullptr);
}

}  // namespace
