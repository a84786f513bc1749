#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "platform/containers/number_arrays.h"
#include "platform/containers/sort.h"

namespace {

// What a paged array of numbers must look like: the entries of all its pages, of which the first `count` are in use.
struct Model {
  std::vector<int> cells;
  int count = 0;
  int page_size;

  explicit Model(int shift) : page_size(1 << shift) {}
  int pages_for(int n) const { return (n + page_size - 1) / page_size; }
  void make_room(int n) {
    const std::size_t wanted = static_cast<std::size_t>(pages_for(n)) * page_size;
    if (cells.size() < wanted) cells.resize(wanted, 0);
  }
  void write(int i, int v) {
    make_room(i + 1);
    cells[i] = v;
    count = std::max(count, i + 1);
  }
  int read(int i) const { return i < static_cast<int>(cells.size()) ? cells[i] : 0; }
  void shrink(int n, bool free) {
    if (free) cells.resize(std::min<std::size_t>(cells.size(), static_cast<std::size_t>(pages_for(n)) * page_size));
    count = std::min(count, n);
  }
  void copy(int n, int dst, int src) {
    n = std::min(n, count);
    std::vector<int> moved;
    for (int k = 0; k < n; ++k) moved.push_back(read(src + k));
    for (int k = 0; k < n; ++k) write(dst + k, moved[k]);
  }
};

void expect_same(const intcoPageArr& array, const Model& model) {
  ASSERT_EQ(array.count(), model.count);
  ASSERT_EQ(array.pages() * array.page_size(), static_cast<int>(model.cells.size()));
  for (int i = 0; i < model.count; ++i) ASSERT_EQ(array[i], model.cells[i]) << i;
}

TEST(PageArr, RandomOperationsMatchAVectorAndAddressesHold) {
  std::mt19937 random(11);
  int moving_copies = 0;
  for (int round = 0; round < 200; ++round) {
    const int shift = static_cast<int>(random() % 6);
    intcoPageArr array(shift, 5, 10);
    Model model(shift);
    int* watched = nullptr;
    int watched_index = 0;
    for (int step = 0; step < 60; ++step) {
      const int i = static_cast<int>(random() % 200), j = static_cast<int>(random() % 200), n = static_cast<int>(random() % 120);
      switch (random() % 8) {
        case 0:
        case 1:
        case 2: array[i] = step; model.write(i, step); break;
        case 3: ASSERT_EQ(array.expand(n), 1); model.make_room(n); model.count = std::max(model.count, n); break;
        case 4: array.shrink(n, 0); model.shrink(n, false); break;
        case 5: array.reverse(); std::reverse(model.cells.begin(), model.cells.begin() + model.count); break;
        case 6: {
          // Only ranges that move up keep every value; the others are copied from the first entry on.
          const int dst = std::max(i, j), src = std::min(i, j);
          array.copy(array, n, dst, src);
          model.copy(n, dst, src);
          moving_copies += dst < src + std::min(n, model.count);
          break;
        }
        default:
          if (random() % 4 != 0) break;
          array.shrink(n, 1);
          model.shrink(n, true);
          watched = nullptr;
      }
      ASSERT_NO_FATAL_FAILURE(expect_same(array, model)) << "round " << round << " step " << step;
      if (watched != nullptr) { ASSERT_EQ(watched, &array.at(watched_index)); }
      if (watched == nullptr && array.count() > 0) {
        watched_index = array.count() / 2;
        watched = &array[watched_index];
      }
    }
  }
  EXPECT_GT(moving_copies, 500);
}

TEST(PageArr, ShrinkKeepsTheReportedCapacityInStep) {
  intcoPageArr array;
  EXPECT_EQ(array.page_capacity(), 5);
  array.expand(600);
  EXPECT_EQ(array.current_block(), 2);
  array.shrink(10, 1);
  EXPECT_EQ(array.pages(), 1);
  EXPECT_EQ(array.count(), 10);
  EXPECT_EQ(array.page_capacity(), 1);
  EXPECT_EQ(array.current_block(), -1);
  array.expand(3 * 256);
  EXPECT_EQ(array.page_capacity(), 11);
}

TEST(PageArr, PagePointerCapacityGrowsByTensAfterTheFirstFive) {
  const struct { int pages, capacity; } cases[] = {{1, 5}, {5, 5}, {6, 15}, {15, 15}, {16, 25}, {126, 135}};
  intcoPageArr array(0, 5, 10);
  for (const auto& c : cases) {
    array.expand(c.pages);
    EXPECT_EQ(array.page_capacity(), c.capacity) << c.pages;
  }
}

// The result is the old capacity minus the size of the one page left.
TEST(PageArr, RepaginateReturnsTheCapacityDifference) {
  const struct { int expanded, count, result, page; } cases[] = {
      {5, 5, 248, 8}, {8, 8, 248, 8}, {600, 9, 752, 16}, {1, 1, 255, 1}, {200, 200, 0, 256}, {600, 200, 512, 256}};
  for (const auto& c : cases) {
    intcoPageArr array;
    array.expand(c.expanded);
    array.shrink(c.count, 0);
    for (int i = 0; i < c.count; ++i) array[i] = 3 * i;
    EXPECT_EQ(array.repaginate(), c.result) << c.count;
    EXPECT_EQ(array.pages(), 1) << c.count;
    EXPECT_EQ(array.page_size(), c.page) << c.count;
    for (int i = 0; i < c.count; ++i) ASSERT_EQ(array[i], 3 * i);
  }
}

// The number copied is bounded by the source's count, not by what follows `src`: of 4 entries from number 3 on, 4 are copied, and
// what lies beyond the source's only page of 4 reads as zero.
TEST(PageArr, CopyIsBoundedByTheSourceCountAlone) {
  intcoPageArr source(2, 5, 10);
  for (int i = 0; i < 4; ++i) source[i] = 10 + i;
  intcoPageArr target;
  target.expand(10);
  for (int i = 0; i < 10; ++i) target[i] = -1;
  target.copy(source, 9, 2, 3);
  const int expected[] = {-1, -1, 13, 0, 0, 0, -1, -1, -1, -1};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(target[i], expected[i]) << i;
}

TEST(PageArr, RawRunsCrossPages) {
  std::vector<int> raw(100), back(100, -1);
  for (int i = 0; i < 100; ++i) raw[i] = i;
  intcoPageArr array(3, 5, 10);
  array.copyin(raw.data(), 50, 5, 20);
  ASSERT_EQ(array.count(), 55);
  array.copyout(back.data(), 40, 10, 7);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(back[i], i < 10 || i >= 50 ? -1 : i + 12) << i;
}

TEST(PageArr, IteratorMeetsEveryEntryOnceAndStartsAgain) {
  for (int count : {0, 1, 7, 8, 9, 64}) {
    intcoPageArr array(3, 5, 10);
    for (int i = 0; i < count; ++i) array[i] = i;
    intcoPageArrcoIterator it(array);
    for (int pass = 0; pass < 2; ++pass) {
      int seen = 0;
      while (++it) ASSERT_EQ(it(), seen++);
      EXPECT_EQ(seen, count);
    }
    EXPECT_EQ(it.do_first(), count > 0);
  }
}

TEST(PageArr, SortsAcrossPages) {
  std::mt19937 random(5);
  for (int count : {0, 1, 2, 255, 256, 5000}) {
    intcoPageArr array;
    std::vector<int> expected;
    for (int i = 0; i < count; ++i) expected.push_back(array[i] = static_cast<int>(random()) % 1000);
    std::sort(expected.begin(), expected.end());
    co_sort(array);
    ASSERT_EQ(array.count(), count);
    for (int i = 0; i < count; ++i) ASSERT_EQ(array[i], expected[i]);
  }
}

// Entries that own something: pages are built and destroyed whole.
TEST(PageArr, PagesConstructAndDestroyEveryEntry) {
  static int alive = 0;
  struct Counted {
    Counted() { ++alive; }
    Counted(const Counted&) { ++alive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() { --alive; }
  };
  {
    coPageArr<Counted> array(4, 5, 10);
    array.expand(17);
    EXPECT_EQ(alive, 32);
    array.shrink(5, 1);
    EXPECT_EQ(alive, 16);
    array.repaginate();
    EXPECT_EQ(alive, 8);
  }
  EXPECT_EQ(alive, 0);
}

}  // namespace
