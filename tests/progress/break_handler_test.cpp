#include "progress/break_handler.h"

#include <gtest/gtest.h>

#include <cstring>

#include "progress/progress.h"
#include "support/interrupting_handler.h"

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

TEST(BreakHandler, StartsWithTheWholeRangeAndNothingReported) {
  const AnsweringHandler handler(0);
  EXPECT_EQ(handler.percent_inf_range(), 0.0);
  EXPECT_EQ(handler.percent_sup_range(), 100.0);
  EXPECT_EQ(handler.last_percent_reported(), 0.0);
  EXPECT_EQ(handler.last_raw_percent, 0.0);
  EXPECT_EQ(handler.default_feedback_message, utString(""));
  EXPECT_EQ(handler.interrupted_flag, 0);
}

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

TEST(BreakHandler, FormatsIntegersInTheirOrder) {
  InterruptingHandler handler;
  handler.report_progress("%d", 1, 10.0);
  handler.report_progress("%d,%3d", 1, 2, 20.0);
  handler.report_progress("%d,%d,%d", 1, 2, 3, 30.0);
  handler.report_progress("%d %d %d %d%%", 1, -2, 3, 4, 40.0);
  EXPECT_EQ(handler.messages, (std::vector<std::string>{"1", "1,  2", "1,2,3", "1 -2 3 4%"}));
  EXPECT_EQ(handler.percents, (std::vector<double>{10, 20, 30, 40}));
}

// A file name with a percent sign must not be taken for a format.
TEST(BreakHandler, PassesATextWithoutIntegersOnAsItIs) {
  InterruptingHandler handler;
  const char* const text = "100% of %s%n";
  handler.report_progress(text, 5.0);
  EXPECT_EQ(handler.messages, std::vector<std::string>{text});
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
