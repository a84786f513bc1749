// The host's progress object, and the functions through which everything reports to it.

#include "progress/progress.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/interrupting_handler.h"
#include "support/marking_hook.h"

namespace {

// Answers every poll with the given number.
class AnsweringHandler : public trBreakHandler {
 public:
  explicit AnsweringHandler(int answer) : answer_(answer) {}
  int interrupt_callback() override {
    ++polls;
    return answer_;
  }
  int polls = 0;

 private:
  int answer_;
};

}  // namespace

// 20 + (60 - 20) * 50 / 100. The ends may be in any order and percentages beyond 0 to 100 are not clamped.
TEST(BreakHandler, MapsAnOperationsPercentageIntoTheHostsRange) {
  struct Case {
    double inf, sup, percent, converted;
  };
  for (const Case& c : {Case{20, 60, 50, 40}, Case{20, 60, 0, 20}, Case{20, 60, 100, 60}, Case{60, 20, 25, 50},
                        Case{0, 100, -100000, -100000}, Case{0, 1, 250, 2.5}}) {
    InterruptingHandler handler;
    handler.set_percent_range(c.inf, c.sup);
    handler.report_progress("working", c.percent);
    EXPECT_EQ(handler.percents, std::vector<double>{c.converted});
    EXPECT_EQ(handler.last_percent_reported(), c.converted);
    EXPECT_EQ(handler.last_raw_percent, c.percent);
  }
}

TEST(BreakHandler, CutsLongMessages) {
  InterruptingHandler handler;
  handler.report_progress((std::string(3000, 'x') + "%d").c_str(), 7, 0.0);
  handler.report_progress("%2000d", 7, 0.0);
  EXPECT_EQ(handler.messages[0], std::string(1023, 'x'));
  EXPECT_EQ(handler.messages[1], std::string(1023, ' '));
}

// The first answer is handed on as the host gave it, later ones are 1, without asking again.
TEST(BreakHandler, AnInterruptionIsFinal) {
  AnsweringHandler handler(7);
  EXPECT_EQ(handler.interrupted(), 7);
  EXPECT_EQ(handler.interrupted(), 1);
  EXPECT_EQ(handler.interrupted(), 1);
  EXPECT_EQ(handler.polls, 1);
  AnsweringHandler patient(0);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(patient.interrupted(), 0);
  EXPECT_EQ(patient.polls, 3);
}

TEST(BreakHandler, OnlyTheFirstOfSeveralIsAsked) {
  auto first = std::make_unique<AnsweringHandler>(0);
  {
    AnsweringHandler second(1);
    EXPECT_EQ(tr_interrupt(), 0);
    EXPECT_EQ(first->polls, 1);
    EXPECT_EQ(second.polls, 0);
  }
  EXPECT_EQ(tr_interrupt(), 0);
  EXPECT_EQ(first->polls, 2);
  AnsweringHandler third(1);
  first.reset();
  // None is current now; one that was made while another was current does not move up.
  EXPECT_EQ(tr_interrupt(), 0);
  EXPECT_EQ(third.polls, 0);
  AnsweringHandler fourth(1);
  EXPECT_EQ(tr_interrupt(), 1);
  EXPECT_EQ(fourth.polls, 1);
}

// Hosts that are already compiled find the callbacks by their place: report, interrupt, destructor.
TEST(BreakHandler, KeepsTheOrderOfItsVirtualFunctions) {
  class Recorder : public trBreakHandler {
   public:
    void report_progress_callback(const char*, double percent) override { reported = percent; }
    int interrupt_callback() override { return 42; }
    double reported = 0.0;
  };
  Recorder recorder;
  void** table = nullptr;
  std::memcpy(&table, static_cast<void*>(static_cast<trBreakHandler*>(&recorder)), sizeof table);
  const auto report = reinterpret_cast<void (*)(trBreakHandler*, const char*, double)>(table[0]);
  const auto interrupt = reinterpret_cast<int (*)(trBreakHandler*)>(table[1]);
  report(&recorder, "", 12.5);
  EXPECT_EQ(recorder.reported, 12.5);
  EXPECT_EQ(interrupt(&recorder), 42);
}

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
  EXPECT_EQ(handler.percent_sup_range(), 100.0);
  tr_set_percent_range(20.0, 60.0);
  tr_report_progress("100% of %s%n", 0.0);  // a text without integers is no format
  tr_report_progress("a %d", 1, 25.0);
  tr_report_progress("b %d %d", 1, 2, 50.0);
  tr_report_progress("c %d %d %d", 1, 2, 3, 75.0);
  tr_report_progress("d %d %d %d %d", 1, 2, 3, 4, 100.0);
  tr_set_default_feedback_message(utString("idle"));
  EXPECT_EQ(handler.messages, (std::vector<std::string>{"100% of %s%n", "a 1", "b 1 2", "c 1 2 3", "d 1 2 3 4"}));
  EXPECT_EQ(handler.percents, (std::vector<double>{20, 30, 40, 50, 60}));
  EXPECT_EQ(tr_get_percent_inf_range(), 20.0);
  EXPECT_EQ(tr_get_percent_sup_range(), 60.0);
  EXPECT_EQ(tr_last_percent_reported(), 60.0);
  EXPECT_EQ(handler.default_feedback_message, utString("idle"));
  handler.clear_default_feedback_message();
  EXPECT_EQ(handler.default_feedback_message, utString(""));
}

// Every thousandth number and the last; the total comes first in the text, the format of which is translated. A total
// of -1 stands for "unknown".
TEST(Progress, LoopsReportEveryThousandthItemAndTheLast) {
  struct Case {
    int i, n;
    double lo, hi;
    const char* node_text;  // null: no report
    const char* triangle_text;
    double percent;
  };
  const Case cases[] = {
      {0, 5000, 0, 100, "<5000 nodes:     0", "<Processing 5000 triangles:     0", 0},
      {999, 5000, 0, 100, nullptr, nullptr, 0},
      {1000, 5000, 0, 100, "<5000 nodes:   1000", "<Processing 5000 triangles:   1000", 20},
      {5000, 5000, 0, 100, "<5000 nodes:   5000", "<Processing 5000 triangles:   5000", 100},
      {7, 7, 30, 50, "<  7 nodes:     7", "<Processing 7 triangles:     7", 50},
      {6, 7, 30, 50, nullptr, nullptr, 0},
      {2000, 4000, 80, 40, "<4000 nodes:   2000", "<Processing 4000 triangles:   2000", 60},
      {1000, -1, 0, 100, "< -1 nodes:   1000", "<Processing -1 triangles:   1000", -100000},
  };
  const MarkingHook hook;
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
