#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

#include "platform/containers/dyn_arr.h"
#include "platform/containers/number_arrays.h"
#include "platform/containers/owning_ptr.h"

namespace {

struct Counted {
  explicit Counted(int v) : value(v) { ++alive; }
  Counted(const Counted&) = delete;
  ~Counted() { --alive; }
  int value;
  static int alive;
};
int Counted::alive = 0;

using OwnerArr = coDynArr<coPrg<Counted>>;

// capacity + inc * ((i - capacity) / inc + 1), with the quotient cut towards zero.
TEST(DynArr, CapacityGrowsByWholeIncrements) {
  const struct { int cap, inc, index, expected; } cases[] = {
      {0, 10, 0, 10}, {0, 10, 9, 10}, {0, 10, 10, 20}, {5, 10, 5, 15}, {5, 10, 14, 15},
      {5, 10, 15, 25}, {5, 3, 100, 101}, {0, 1, 7, 8}, {4, 0, 4, 5}, {25, 10, 3, 15}};
  for (const auto& c : cases) {
    intcoDynArr array(c.cap, c.inc);
    EXPECT_EQ(array.capacity(), c.cap);
    EXPECT_EQ(array.resize(c.index), 1);
    EXPECT_EQ(array.capacity(), c.expected) << c.cap << ' ' << c.inc << ' ' << c.index;
    EXPECT_EQ(array.count(), 0);
  }
}

TEST(DynArr, ReserveWithinTheCapacityChangesNothing) {
  intcoDynArr array(5, 10);
  EXPECT_EQ(array.reserve(5), 1);
  EXPECT_EQ(array.capacity(), 5);
  EXPECT_EQ(array.reserve(6), 1);
  EXPECT_EQ(array.capacity(), 15);
  EXPECT_EQ(array.expand(20), 1);
  EXPECT_EQ(array.count(), 20);
  EXPECT_EQ(array.expand(3), 1);
  EXPECT_EQ(array.count(), 20);
}

TEST(DynArr, WithoutMemoryReportsZeroAndKeepsItsEntries) {
  coDynArr<std::vector<double>> array(2, 10);
  array[0].push_back(1.5);
  EXPECT_EQ(array.resize(INT_MAX), 0);  // the capacity would exceed an int
  array[INT_MAX].push_back(2.5);        // goes to an entry that belongs to nobody ...
  EXPECT_TRUE(array[INT_MAX].empty());  // ... and is lost
  EXPECT_EQ(array.count(), 1);
  EXPECT_EQ(array.capacity(), 2);
  EXPECT_EQ(array[0].at(0), 1.5);
}

// Up to the capacity the cells beyond the count keep what they held; new storage, larger or smaller, carries only the count over.
TEST(DynArr, RandomOperationsMatchAVector) {
  std::mt19937 random(17);
  int renewals = 0;
  for (int round = 0; round < 100; ++round) {
    intcoDynArr array(static_cast<int>(random() % 4), 1 + static_cast<int>(random() % 12));
    std::vector<int> cells(array.capacity(), 0);
    int count = 0;
    for (int step = 1; step <= 200; ++step) {
      const int n = static_cast<int>(random() % 60);
      const int before = array.capacity(), count_before = count;
      bool write = false;
      switch (random() % 6) {
        case 0: array.expand(n); count = std::max(count, n); break;
        case 1: array.shrink(n, 0); count = std::min(count, n); break;
        case 2: array.shrink(n, 1); count = std::min(count, n); break;
        case 3: if (random() % 8 == 0) { array.clear(0); count = 0; } break;
        default: array[n] = step; count = std::max(count, n + 1); write = true;
      }
      if (array.capacity() != before) {
        cells.resize(std::min(count_before, array.capacity()));
        cells.resize(array.capacity(), 0);
        ++renewals;
      }
      if (write) cells[n] = step;
      ASSERT_EQ(array.count(), count);
      for (int k = 0; k < count; ++k) ASSERT_EQ(array[k], cells[k]) << round << ' ' << step << ' ' << k;
    }
  }
  EXPECT_GT(renewals, 2000);
}

// 200 000 single appends with increment 1 copy each entry a constant number of times; growing by one entry each time would copy
// 2 * 10^10.
TEST(DynArr, AppendingWithASmallIncrementIsLinear) {
  static std::int64_t moves = 0;
  struct Tracked {
    Tracked() = default;
    Tracked& operator=(Tracked&&) {
      ++moves;
      return *this;
    }
    Tracked& operator=(const Tracked&) = default;
    Tracked(Tracked&&) = default;
  };
  coDynArr<Tracked> array(0, 1);
  for (int i = 0; i < 200000; ++i) array[i];
  EXPECT_EQ(array.capacity(), 200000);
  EXPECT_LT(moves, 4 * 200000);
}

TEST(DynArr, AppendTransfersOwnership) {
  {
    OwnerArr array(1, 1);
    for (int v = 0; v < 10; ++v) {
      coPrg<Counted> owner(new Counted(v));
      EXPECT_EQ(array.append(owner), v);
      EXPECT_EQ(owner.get(), nullptr);
    }
    EXPECT_EQ(Counted::alive, 10);
    for (int v = 0; v < 10; ++v) EXPECT_EQ(array[v]->value, v);

    // Appending over the entries left behind by clear(0) drops what they own.
    array.clear(0);
    EXPECT_EQ(Counted::alive, 10);
    coPrg<Counted> owner(new Counted(77));
    array.append(owner);
    EXPECT_EQ(Counted::alive, 10);
    EXPECT_EQ(array[0]->value, 77);
    array.shrink(0, 1);
    EXPECT_EQ(Counted::alive, 0);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(DynArr, AppendOfAnOwnEntry) {
  OwnerArr array(2, 1);
  for (int v = 0; v < 2; ++v) array[v] = new Counted(v);
  EXPECT_EQ(array.append(array[0]), 2);  // the storage moves under the argument
  EXPECT_EQ(array[0].get(), nullptr);
  EXPECT_EQ(array[2]->value, 0);
  array.shrink(2, 0);
  coPrg<Counted>& beyond = *(&array[1] + 1);
  EXPECT_EQ(array.append(beyond), 2);  // it stands there already
  ASSERT_NE(array[2].get(), nullptr);
  EXPECT_EQ(array[2]->value, 0);
  array.clear(1);
  EXPECT_EQ(Counted::alive, 0);
}

TEST(DynArr, IteratorMeetsEveryEntryAndStartsAgain) {
  intcoDynArr array;
  intcoDynArrcoIterator it(array);
  EXPECT_EQ(++it, 0);
  for (int v = 0; v < 30; ++v) array[v] = v;
  for (int pass = 0; pass < 2; ++pass) {
    int seen = 0;
    while (++it) ASSERT_EQ(it(), seen++);
    EXPECT_EQ(seen, 30);
  }
}

TEST(BufferGuard, DeletesUnlessReleased) {
  {
    coBufferGuard<coPrg<Counted>> guard(new coPrg<Counted>[2]);
    guard.get()[0] = new Counted(1);
  }
  EXPECT_EQ(Counted::alive, 0);
  coBufferGuard<int> kept(new int[3]);
  int* buffer = kept.release();
  EXPECT_EQ(kept.get(), nullptr);
  delete[] buffer;
}

}  // namespace
