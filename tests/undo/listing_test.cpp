// What the history prints and writes, letter by letter.

#include <gtest/gtest.h>

#include "support/captured_output.h"
#include "support/command_file.h"
#include "support/marking_hook.h"
#include "undo/undo_hist.h"

namespace {

const std::string name_of_34(34, 'n');
const std::string name_of_40 = "0123456789012345678901234567890123456789";

void record(trUndoHist& history, const std::string& name, int nodes, int elements) {
  history.start(name);
  for (int k = 0; k < nodes; ++k) history.triblock->set_node(history.triblock->node_count(), giPoint3(k, 0, 0));
  for (int k = 0; k < elements; ++k) history.triblock->generate(1, 2, 3);
  history.finish();
}

// Three operations, of which the last is undone: it is the first that a redo would apply.
void fill(trUndoHist& history) {
  record(history, "weld", 5, 1);
  record(history, name_of_34, 0, 12);
  record(history, name_of_40, 1, 0);
  history.undo();
}

struct Listing {
  std::string screen;
  std::string file;
};

Listing listing_of(const trUndoHist& history) {
  CapturedOutput output;
  CommandFile file;
  history.print(file.file());
  std::fclose(file.file());
  return {output.take(), file.text()};
}

// The bracket stands in column 36 of the record's line, or one blank behind a longer name; lines in the file run on.
TEST(UndoListing, ShowsFileMarkerNumberNameAndCounts) {
  trTriBlock block;
  trUndoHist history(&block);
  history.reset("part.stl");
  fill(history);
  const Listing listing = listing_of(history);
  EXPECT_EQ(listing.screen, "FILE: part.stl\n     1  weld" + std::string(31, ' ') +
                                "[5 nodes, 1 elems]\n"
                                "     2  " +
                                name_of_34 +
                                " [0 nodes, 12 elems]\n"
                                "->   3  " +
                                name_of_40 + " [1 nodes, 0 elems]\n");
  EXPECT_EQ(listing.file, "FILE: part.stl\n     1  weld" + std::string(25, ' ') + " [5 nodes, 1 tri]     2  " +
                              name_of_34.substr(0, 29) + " [0 nodes, 12 tri]->   3  " + name_of_40.substr(0, 29) +
                              " [1 nodes, 0 tri]");
  CapturedOutput output;
  history.print(nullptr);
  EXPECT_EQ(output.take(), listing.screen);
}

TEST(UndoListing, PassesTheTranslationHook) {
  trTriBlock block;
  trUndoHist history(&block);
  const MarkingHook hook;
  const Listing empty = listing_of(history);
  EXPECT_EQ(empty.screen, "<Data not yet read from file.\n<There is no undo information.\n");
  EXPECT_EQ(empty.file, empty.screen);
  EXPECT_TRUE(history.print_line(0).empty());
  history.reset("part.stl");
  record(history, "weld", 5, 1);
  const Listing listing = listing_of(history);
  EXPECT_EQ(listing.screen, "<FILE: part.stl\n<     1<  weld" + std::string(31, ' ') + "<[5< nodes, 1< elems<]\n");
  EXPECT_EQ(listing.file, "<FILE: part.stl\n<<     1  <weld" + std::string(25, ' ') + " [5 nodes, 1 tri]");
  EXPECT_EQ(history.print_line(0), utString("<1) <weld" + std::string(25, ' ') + " [5 nodes, 1 tri]"));
}

// A record's line alone counts from 1; a name with characters that formats give a meaning is a name all the same.
TEST(UndoListing, HasALineForEachRecord) {
  trTriBlock block;
  trUndoHist history(&block);
  record(history, "100%s %d", 1, 0);
  EXPECT_EQ(history.print_line(0), utString("1) 100%s %d" + std::string(21, ' ') + " [1 nodes, 0 tri]"));
  EXPECT_EQ(history.records[0]->print(), utString("100%s %d" + std::string(21, ' ') + " [1 nodes, 0 tri]"));
  EXPECT_TRUE(history.print_line(1).empty());
}

TEST(UndoMessages, SayWhatCannotBeDone) {
  trTriBlock block;
  trUndoHist history(&block);
  const MarkingHook hook;
  CapturedOutput output;
  history.undo();
  history.redo();
  EXPECT_EQ(output.take(), "<Nothing to undo.\n<Nothing to redo.\n");
  history.start("idle");
  EXPECT_EQ(history.finish(), 0);
  EXPECT_EQ(output.take(), "\n<! <Operation had no effect. No undo information stored.< !\n");
  history.reset("part.stl");
  EXPECT_EQ(output.take(), "");
  history.reset("");
  EXPECT_EQ(output.take(), "<Undo information for 'part.stl<' has been cancelled.\n");
  history.reset("other.stl");
  EXPECT_EQ(output.take(), "<Undo information for 'part.stl<' has been cancelled.\n");
  EXPECT_EQ(history.filename(), utString("other.stl"));
}

}  // namespace
