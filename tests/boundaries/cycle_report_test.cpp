#include <gtest/gtest.h>

#include "boundaries/boundary_shapes.h"
#include "support/captured_output.h"
#include "support/command_file.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"

namespace {

struct Texts {
  std::string screen;
  std::string file;
};

Texts report(const trCycleArray& set, int detailed) {
  const MarkingHook hook;
  CapturedOutput out;
  CommandFile commands;
  set.info(commands.file(), detailed);
  std::fclose(commands.file());
  return {out.take(), commands.text()};
}

// 22 loose triangles and a square of two.
Shape loose_and_square() {
  Shape shape = loose_triangles(22);
  const int n = static_cast<int>(shape.points.size());
  for (int k = 0; k < 4; ++k) shape.points.emplace_back(k % 2, k / 2, 9);
  shape.triangles.push_back({n, n + 1, n + 2});
  shape.triangles.push_back({n + 1, n + 3, n + 2});
  return shape;
}

}  // namespace

// Ten values a line, each with a blank before it: so two after the name.
TEST(CycleReport, TellsHowManyBoundariesHaveHowManyEdges) {
  BlockOf block(loose_and_square());
  const trCycleArray set(&block);
  const std::string summary = "<Boundary info...\n< Boundary count: 23\n< Boundary edge count: 70\n";
  const std::string registers = "INPUT REGISTER @NUMBOU 23\nINPUT REGISTER @NUMEDGE 70\n";
  const std::string sizes = "<  Boundary edge distribution:- \n<   3 sided: 22\n<   4 sided: 1\n";
  const std::string list = "INPUT LIST @BOU  3 3 3 3 3 3 3 3 3 3\nAPPEND LIST @BOU  3 3 3 3 3 3 3 3 3 3\nAPPEND LIST @BOU  3 3 4\n";
  const Texts brief = report(set, 0);
  EXPECT_EQ(brief.screen, summary);
  EXPECT_EQ(brief.file, registers);
  const Texts full = report(set, 1);
  EXPECT_EQ(full.screen, summary + sizes);
  EXPECT_EQ(full.file, registers + list);
  block.verbose = 1;
  EXPECT_EQ(report(set, 0).screen, full.screen);
  CapturedOutput out;
  set.info(nullptr, 0);
  EXPECT_EQ(out.take(),
            "Boundary info...\n Boundary count: 23\n Boundary edge count: 70\n  Boundary edge distribution:- \n"
            "   3 sided: 22\n   4 sided: 1\n");
}

TEST(CycleReport, AClosedMeshHasNoDistribution) {
  BlockOf block(closed_box());
  const trCycleArray set(&block);
  const Texts texts = report(set, 1);
  EXPECT_EQ(texts.screen, "<Boundary info...\n< Boundary count: 0\n< Boundary edge count: 0\n");
  EXPECT_EQ(texts.file, "INPUT REGISTER @NUMBOU 0\nINPUT REGISTER @NUMEDGE 0\n");
}

TEST(CycleReport, AnInterruptionAtAnyPollEndsItWhereItIs) {
  const Shape shape = loose_and_square();
  BlockOf whole(shape);
  const trCycleArray reference(&whole);
  const Texts full = report(reference, 1);
  int cut = 0;
  bool stopped = true;
  for (int stop = 1; stopped; ++stop) {
    BlockOf block(shape);
    const trCycleArray set(&block);
    InterruptingHandler handler(stop);
    const Texts texts = report(set, 1);
    stopped = handler.interrupted_flag;
    ASSERT_EQ(texts.screen, full.screen.substr(0, texts.screen.size()));
    ASSERT_EQ(texts.file, full.file.substr(0, texts.file.size()));
    ASSERT_TRUE(stopped || texts.file == full.file);
    cut += stopped && texts.file.size() > 60;
  }
  EXPECT_GE(cut, 20);
}

// Each polyline has a point more than edges; the message counts edges.
TEST(CycleReport, ThePictureDrawsEachBoundaryAsAClosedPolyline) {
  BlockOf block(loose_triangles(2));
  block.set_node(6, giPoint3(3, 1.5, -2));
  trCycleArray set(&block);
  const std::string first =
      "EDIT PLEV 0#UNSET ECHO\nDELETE PICTURE\n"
      "INPUT PIX 1 0.000000 0.000000 0.000000\nEDIT PIX 1 INV\n"
      "INPUT PIX 2 1.000000 0.000000 0.000000 $$ = NODE 2\nINPUT PIX 3 0.000000 1.000000 0.000000 $$ = NODE 3\n"
      "INPUT PIX 4 0.000000 0.000000 0.000000 $$ = NODE 1\n";
  const std::string second =
      "INPUT PIX 5 3.000000 0.000000 0.000000\nEDIT PIX 5 INV\n"
      "INPUT PIX 6 4.000000 0.000000 0.000000 $$ = NODE 5\nINPUT PIX 7 3.000000 1.500000 -2.000000 $$ = NODE 6\n"
      "INPUT PIX 8 3.000000 0.000000 0.000000 $$ = NODE 4\n";
  const MarkingHook hook;
  CapturedOutput out;
  CommandFile picture;
  set.write(picture.file());
  EXPECT_EQ(picture.text(), first + second);
  EXPECT_EQ(out.take(), "<Writing picture file ...\n<... 6 boundary edges written.\n");

  set.cycles[0].start = -1;
  CommandFile rest;
  set.write(rest.file());
  EXPECT_EQ(rest.text().substr(0, 79),
            "EDIT PLEV 0#UNSET ECHO\nDELETE PICTURE\nINPUT PIX 1 3.000000 0.000000 0.000000\nED");

  InterruptingHandler handler(1);
  CommandFile none;
  set.write(none.file());
  EXPECT_EQ(none.text(), "EDIT PLEV 0#UNSET ECHO\nDELETE PICTURE\n") << "and the file is closed";
}
