#include "progress/progress.h"

#include <gtest/gtest.h>

#include "support/interrupting_handler.h"
#include "support/marking_hook.h"

TEST(Progress, WithoutAHandlerNothingIsReportedOrInterrupted) {
  tr_report_progress("text", 50.0);
  tr_report_progress("%d %d %d %d", 1, 2, 3, 4, 50.0);
  tr_report_nodes(0, 10, 0.0, 100.0);
  tr_report_triangles(0, 0, 0.0, 100.0);
  tr_set_percent_range(20.0, 60.0);
  tr_set_default_feedback_message(utString("idle"));
  EXPECT_EQ(tr_interrupt(), 0);
  EXPECT_EQ(tr_get_percent_inf_range(), 0.0);
  EXPECT_EQ(tr_get_percent_sup_range(), 100.0);
  EXPECT_EQ(tr_last_percent_reported(), 0.0);
}

TEST(Progress, GoesToTheCurrentHandler) {
  InterruptingHandler handler;
  tr_set_percent_range(20.0, 60.0);
  tr_report_progress("100%", 0.0);
  tr_report_progress("a %d", 1, 25.0);
  tr_report_progress("b %d %d", 1, 2, 50.0);
  tr_report_progress("c %d %d %d", 1, 2, 3, 75.0);
  tr_report_progress("d %d %d %d %d", 1, 2, 3, 4, 100.0);
  tr_set_default_feedback_message(utString("idle"));
  EXPECT_EQ(handler.messages, (std::vector<std::string>{"100%", "a 1", "b 1 2", "c 1 2 3", "d 1 2 3 4"}));
  EXPECT_EQ(handler.percents, (std::vector<double>{20, 30, 40, 50, 60}));
  EXPECT_EQ(tr_get_percent_inf_range(), 20.0);
  EXPECT_EQ(tr_get_percent_sup_range(), 60.0);
  EXPECT_EQ(tr_last_percent_reported(), 60.0);
  EXPECT_EQ(handler.default_feedback_message, utString("idle"));
  handler.clear_default_feedback_message();
  EXPECT_EQ(handler.default_feedback_message, utString(""));
}

// Every thousandth number and the last; the total comes first in the text. A total of -1 stands for "unknown".
TEST(Progress, LoopsReportEveryThousandthItemAndTheLast) {
  struct Case {
    int i, n;
    double lo, hi;
    const char* node_text;  // null: no report
    const char* triangle_text;
    double percent;
  };
  const Case cases[] = {
      {0, 5000, 0, 100, "5000 nodes:     0", "Processing 5000 triangles:     0", 0},
      {999, 5000, 0, 100, nullptr, nullptr, 0},
      {1000, 5000, 0, 100, "5000 nodes:   1000", "Processing 5000 triangles:   1000", 20},
      {5000, 5000, 0, 100, "5000 nodes:   5000", "Processing 5000 triangles:   5000", 100},
      {7, 7, 30, 50, "  7 nodes:     7", "Processing 7 triangles:     7", 50},
      {6, 7, 30, 50, nullptr, nullptr, 0},
      {2000, 4000, 80, 40, "4000 nodes:   2000", "Processing 4000 triangles:   2000", 60},
      {1000, -1, 0, 100, " -1 nodes:   1000", "Processing -1 triangles:   1000", -100000},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.i << " of " << c.n);
    InterruptingHandler handler;
    tr_report_nodes(c.i, c.n, c.lo, c.hi);
    tr_report_triangles(c.i, c.n, c.lo, c.hi);
    if (c.node_text == nullptr) {
      EXPECT_TRUE(handler.messages.empty());
    } else {
      EXPECT_EQ(handler.messages, (std::vector<std::string>{c.node_text, c.triangle_text}));
      EXPECT_EQ(handler.percents, (std::vector<double>{c.percent, c.percent}));
    }
  }
}

TEST(Progress, NothingOfNothingIsNoNumber) {
  InterruptingHandler handler;
  tr_report_nodes(0, 0, 0.0, 100.0);
  ASSERT_EQ(handler.percents.size(), 1u);
  EXPECT_TRUE(std::isnan(handler.percents[0]));
}

TEST(Progress, LoopFormatsAreTranslated) {
  const MarkingHook hook;
  InterruptingHandler handler;
  tr_report_nodes(0, 5, 0.0, 100.0);
  tr_report_triangles(0, 5, 0.0, 100.0);
  EXPECT_EQ(handler.messages, (std::vector<std::string>{"<  5 nodes:     0", "<Processing 5 triangles:     0"}));
}
