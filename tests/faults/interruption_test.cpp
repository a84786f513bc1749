// The host's stop at any poll of any action: finish_undo(0) brings back the mesh as it was before, to the last bit.
//
// MENDEX_FAULT_STRIDE: of the polls of the small model only each so-many-th.
// MENDEX_FAULT_TRIANGLES and MENDEX_FAULT_POLLS: size of the large model, and the polls of each action that are tried on it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "faults/fault_cases.h"
#include "faults/fault_host.h"
#include "support/interrupting_handler.h"
#include "support/random.h"

namespace {

int number_from(const char* variable, int otherwise) {
  const char* const text = std::getenv(variable);
  return text == nullptr ? otherwise : std::atoi(text);
}

class Interruption : public testing::TestWithParam<FaultCase> {
 protected:
  // The polls of a run that nothing stops. It must have changed something, save where it may refuse the model.
  int polls_of(const Shape& model, bool may_refuse) {
    FaultHost host(model, GetParam());
    InterruptingHandler handler;
    host.act();
    EXPECT_TRUE(may_refuse || host.difference() != "") << "the action had nothing to do";
    return handler.polls;
  }

  void stop_at(const Shape& model, int poll) {
    FaultHost host(model, GetParam());
    {
      InterruptingHandler handler(poll);
      host.act();
    }
    host.take_back();
    ASSERT_EQ(host.difference(), "") << "stopped at poll " << poll;
    ASSERT_TRUE(is_sound(host.triblock()));
  }
};

std::string name_of(const testing::TestParamInfo<FaultCase>& info) { return info.param.name; }

}  // namespace

TEST_P(Interruption, AtEveryPollOfASmallModel) {
  const Shape model = messy_model(60);
  const int polls = polls_of(model, false);
  EXPECT_GT(polls, 10);
  const int stride = std::max(1, number_from("MENDEX_FAULT_STRIDE", 1));
  for (int poll = 1; poll <= polls && !HasFatalFailure(); poll += stride) stop_at(model, poll);
}

TEST_P(Interruption, AtRandomPollsOfALargeModel) {
  const Shape model = messy_model(number_from("MENDEX_FAULT_TRIANGLES", 3000));
  const bool needs_surface = std::string(GetParam().name).find("curved") != std::string::npos;  // which not every hole takes
  const int polls = polls_of(model, needs_surface);
  Random random(static_cast<std::uint64_t>(polls));
  for (int k = number_from("MENDEX_FAULT_POLLS", 3); k > 0 && !HasFatalFailure(); --k) stop_at(model, random.between(1, polls));
}

INSTANTIATE_TEST_SUITE_P(Actions, Interruption, testing::ValuesIn(fault_cases()), name_of);
