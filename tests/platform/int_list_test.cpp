#include <gtest/gtest.h>

#include <climits>
#include <deque>
#include <random>
#include <vector>

#include "platform/containers/int_slist.h"

namespace {

std::vector<int> entries(const intcoSListB& list) {
  std::vector<int> found;
  intcoSListBcoIterator it(list);
  while (++it) found.push_back(it());
  return found;
}

// Negative numbers and numbers with high bits take another form in the pool than the last entry of most lists.
TEST(IntList, RandomListsMatchDeques) {
  std::mt19937 random(3);
  const int values[] = {0, 1, -1, 7, INT_MAX, INT_MIN, 1 << 30, -5};
  const std::int64_t live_before = coCellPool::live();
  {
    std::vector<intcoSListB> lists(20);
    std::vector<std::deque<int>> expected(20);
    for (int step = 0; step < 20000; ++step) {
      const std::size_t k = random() % 20, other = random() % 20;
      if (random() % 100 == 0) {
        lists[k].clear();
        expected[k].clear();
      } else if (random() % 20 == 0) {
        lists[k].swap(lists[other]);
        expected[k].swap(expected[other]);
      } else if (random() % 5 < 3) {
        const int v = values[random() % 8];
        ASSERT_EQ(lists[k].insert_front(v), 1);
        expected[k].push_front(v);
      } else if (!lists[k].empty()) {
        ASSERT_EQ(lists[k].front(), expected[k].front());
        ASSERT_EQ(lists[k].remove_front(), expected[k].front());
        expected[k].pop_front();
      }
      ASSERT_EQ(lists[k].empty(), expected[k].empty());
      ASSERT_EQ(entries(lists[k]), std::vector<int>(expected[k].begin(), expected[k].end()));
      ASSERT_EQ(lists[k].count(), static_cast<int>(expected[k].size()));
    }
  }
  EXPECT_EQ(coCellPool::live(), live_before);
}

TEST(IntList, AWalkBearsInsertionsAtTheFront) {
  intcoSListB list;
  for (int v = 0; v < 5; ++v) list.insert_front(v);
  intcoSListBcoIterator it(list);
  std::vector<int> seen;
  while (++it) {
    seen.push_back(it());
    list.insert_front(100 + it());
  }
  EXPECT_EQ(seen, (std::vector<int>{4, 3, 2, 1, 0}));
  EXPECT_EQ(list.count(), 10);
  EXPECT_EQ(it.do_first(), 1);
  EXPECT_EQ(it(), 100);
}

// Two million cells need eight slabs; the pool must hand out each cell once and reuse the freed ones.
TEST(IntList, LongListsReuseFreedCells) {
  const int n = 1000000;
  const std::int64_t live_before = coCellPool::live();
  for (int round = 0; round < 2; ++round) {
    intcoSListB list, other;
    for (int v = 0; v < n; ++v) {
      list.insert_front(v);
      other.insert_front(-v);
    }
    EXPECT_EQ(coCellPool::live() - live_before, 2 * (n - 1));  // the 0 that ends either list needs no cell
    for (int v = n - 1; v >= 0; --v) {
      ASSERT_EQ(list.remove_front(), v);
      ASSERT_EQ(other.remove_front(), -v);
    }
  }
  EXPECT_EQ(coCellPool::live(), live_before);
}

}  // namespace
