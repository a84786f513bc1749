#include "mesh/clean_int_array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/interrupting_handler.h"
#include "support/random.h"

namespace {

// The rule as it is worded, ended at the given poll (never for 0).
int clean_literal(std::vector<int>& a, int stop_at) {
  int removed = 0, polls = 0;
  for (std::size_t p = 0; p < a.size() && ++polls != stop_at;) {
    if (std::find(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(p), a[p]) == a.begin() + static_cast<std::ptrdiff_t>(p)) {
      ++p;
      continue;
    }
    ++removed;
    const int last = a.back();
    a.pop_back();
    if (p < a.size()) a[p] = last;
  }
  return removed;
}

std::vector<int> entries(const intcoPageArr& array) {
  std::vector<int> found;
  for (int k = 0; k < array.count(); ++k) found.push_back(array[k]);
  return found;
}

TEST(CleanIntArray, MatchesTheRuleAtEveryInterruption) {
  Random random(67);
  int removals = 0, interruptions = 0;
  for (int round = 0; round < 400; ++round) {
    std::vector<int> values(static_cast<std::size_t>(random.below(40)));
    const int range = random.between(1, 50);
    for (int& v : values) v = random.below(range) - range / 2;
    for (int stop_at = 0; stop_at < 45; stop_at += 1 + random.below(6)) {
      intcoPageArr array(3, 5, 10);
      for (std::size_t k = 0; k < values.size(); ++k) array[static_cast<int>(k)] = values[k];
      std::vector<int> expected = values;
      const int removed = clean_literal(expected, stop_at);
      InterruptingHandler handler(stop_at);
      ASSERT_EQ(tr_clean_int_array(array), removed);
      ASSERT_EQ(entries(array), expected);
      removals += removed;
      interruptions += handler.polls == stop_at;
    }
  }
  EXPECT_GT(removals, 20000);
  EXPECT_GT(interruptions, 1000);
}

// A million entries of which half repeat; comparing each with all earlier ones takes 10^11 steps.
TEST(CleanIntArray, LongListsTakeLinearTime) {
  intcoPageArr array;
  const int n = 500000;
  for (int k = 0; k < 2 * n; ++k) array[k] = 64 * (k % n);
  const int pages = array.pages();
  EXPECT_EQ(tr_clean_int_array(array), n);
  EXPECT_EQ(array.count(), n);
  EXPECT_EQ(array.pages(), pages);
  EXPECT_EQ(array[n - 1], 64 * (n - 1));
}

}  // namespace
