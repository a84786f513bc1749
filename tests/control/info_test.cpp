// The statistics report, on the screen and as register commands, to the letter.

#include <gtest/gtest.h>

#include "control/host.h"
#include "progress/progress.h"
#include "support/command_file.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"

namespace {

constexpr const char* box_counts =
    "TriBlock info...\n  No node attributes\n  Node count: 8(max node num is 8)\n  Element count: 12(max element num is 12)\n"
    "  Size:-  X: 0, 1   Y: 0, 2   Z: 0, 3   \n";

struct Texts {
  std::string screen, file;
};

Texts info(trTriBlock& block, double tol, int level) {
  CapturedOutput output;
  CommandFile commands;
  block.info(tol, commands.file(), level);
  std::fclose(commands.file());
  return {output.take(), commands.text()};
}

}  // namespace

// A box of 1 by 2 by 3. The faces' heights over their diagonals are 2 / sqrt(5), 3 / sqrt(10) and 6 / sqrt(13), their aspects 2/5, 3/10
// and 6/13; the twelve edges are right angles, seen from both sides.
TEST(Info, ReportsABoxInFull) {
  CapturedOutput output;
  Host control(closed_box({}, 1.0, 2.0, 3.0));
  CommandFile commands;
  control.action_info(1, 0.92, commands.file());
  EXPECT_EQ(output.take(),
            "System info...\n  Verbose printing is OFF\n  Full undo history is ON\n  Preserve is OFF\n  Trismooth is ON\n"
            "  Formats: .mnx .mes .tri .stl .ast .kvx\n\n" +
                std::string(box_counts) +
                "  Min element height: 0.894427  (4 are less than 0.920000)\n"
                "  Min element aspect: 0.300000  (12 are less than 0.920000)\n"
                "  Sharpest Angle: 90.000000 degrees (overlap tol: 0.500000, 24 angles < 0.920000)\n\n"
                "Triangle statistics...\n  Sick elements: 0\n"
                "  Height of smallest triangle: 0.894427\n  Current height tol: 0.0001 (0 triangles)\n"
                "  Aspect ratio of thinnest triangle: 0.3\n  Current aspect ratio tol: 0.0001 (0 triangles)\n"
                "  Sharpest angle between adjacent triangles: 90 degrees\n"
                "  Current overlap angular tol: 2.5 degrees (0 triangles)\n"
                "  Overhanging elements: 2\n  Intersecting triangles: not computed\n\n"
                "Boundary info...\n Boundary count: 0\n Boundary edge count: 0\n");
  EXPECT_EQ(commands.text(),
            "UNSET ECHO#EDIT PLEV -1\nINPUT REGISTER @NUMNOD 8\nINPUT REGISTER @MAXNOD 8\nINPUT REGISTER @NUMELE 12\n"
            "INPUT REGISTER @MAXELE 12\nINPUT REGISTER @SIZE 0.000000 1.000000 0.000000 $\n"
            "                     2.000000 0.000000 3.000000\nINPUT REGISTER @NUMSICK 0\nINPUT REGISTER @MINHITE 0.894427\n"
            "INPUT REGISTER @MINASPT 0.300000\nINPUT REGISTER @ANGLE 90.000000\nINPUT REGISTER @OVERTOL 0.500000\n"
            "INPUT REGISTER @NUMBOU 0\nINPUT REGISTER @NUMEDGE 0\n");
}

// The shape statistics are for the file: without one they are left out, whatever the level.
TEST(Info, WithoutAFileTheShapeStatisticsAreLeftOut) {
  BlockOf block(closed_box({}, 1.0, 2.0, 3.0));
  const Texts brief = info(block, 0.92, 0);
  EXPECT_EQ(brief.screen, box_counts);
  EXPECT_EQ(brief.file.find("@NUMSICK"), std::string::npos);
  CapturedOutput output;
  block.info(0.92, nullptr, 1);
  EXPECT_EQ(output.take(), box_counts);
}

TEST(Info, CountsSkipDeletedEntitiesAndAttributesAreTold) {
  BlockOf block(closed_box());
  block.set_node_data_size(4);
  block.delete_element(12);
  block.delete_element(3);
  EXPECT_EQ(info(block, 0.0, 0).screen,
            "TriBlock info...\n  There are 4 attributes stored per node\n  Node count: 8(max node num is 8)\n"
            "  Element count: 10(max element num is 11)\n  Size:-  X: 0, 1   Y: 0, 1   Z: 0, 1   \n");
}

// Minima over nothing are 0, and the box of nothing is no box.
TEST(Info, AnEmptyMeshHasNoSize) {
  trTriBlock block;
  const Texts texts = info(block, 0.5, 1);
  EXPECT_EQ(texts.screen,
            "TriBlock info...\n  No node attributes\n  Node count: 0(max node num is 0)\n"
            "  Element count: 0(max element num is 0)\n  Size:-  unevaluated.\n"
            "  Min element height: 0.000000  (0 are less than 0.500000)\n"
            "  Min element aspect: 0.000000  (0 are less than 0.500000)\n"
            "  Sharpest Angle: 180.000000 degrees (overlap tol: 1.000000, 0 angles < 0.500000)\n");
  EXPECT_NE(texts.file.find("DELETE REGISTER @SIZE\n"), std::string::npos);
}

TEST(Info, EveryLinePassesTheTranslation) {
  CapturedOutput output;
  const MarkingHook hook;
  Host control(closed_box());
  CommandFile commands;
  control.action_info(1, 0.5, commands.file());
  std::istringstream lines(output.take());
  int checked = 0;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(line.empty() || line.find('<') == 0 || line.find("  <") == 0) << line;
    checked += !line.empty();
  }
  EXPECT_GT(checked, 20);
}

// Interrupted at any poll the report ends: what is printed is the beginning of the whole.
TEST(Info, StopsWhereItIsInterrupted) {
  BlockOf block(closed_box());
  const std::string whole = info(block, 0.5, 1).screen;
  int shorter = 0;
  bool is_stopped = true;
  for (int stop = 1; is_stopped; ++stop) {
    const InterruptingHandler handler(stop);
    const std::string text = info(block, 0.5, 1).screen;
    is_stopped = handler.interrupted_flag;
    EXPECT_EQ(whole.compare(0, text.size(), text), 0) << text;
    shorter += text.size() < whole.size();
  }
  EXPECT_GT(shorter, 20);
}
