#include <gtest/gtest.h>

#include <climits>
#include <deque>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "platform/containers/dyn_arr.h"
#include "platform/containers/int_slist.h"
#include "platform/containers/number_arrays.h"
#include "platform/containers/owning_ptr.h"
#include "platform/containers/shared_ptr.h"

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

TEST(OwningPointer, DeletesExactlyOnce) {
  {
    coPrg<Counted> owner(new Counted(1));
    Counted* raw = owner.release();
    EXPECT_EQ(Counted::alive, 1);
    const Counted* constant = raw;
    owner = constant;  // a pointer to const is taken over all the same
    owner.become(constant);
    EXPECT_EQ(Counted::alive, 1);
    owner.become(new Counted(1));
    EXPECT_EQ(Counted::alive, 1);

    coPrg<Counted> other(new Counted(1));
    Counted* second = other.get();
    owner.swap(other);
    EXPECT_EQ(owner.get(), second);
    other.delete_pointer();
    other.delete_pointer();
    EXPECT_EQ(Counted::alive, 1);

    other = std::move(owner);
    EXPECT_EQ(owner.get(), nullptr);
    EXPECT_EQ(other.get(), second);
    coPrg<Counted>& alias = other;
    other = std::move(alias);
    EXPECT_EQ(other.get(), second);
    coPrg<Counted> moved(std::move(other));
    moved.reset();
    EXPECT_EQ(Counted::alive, 0);
    moved.become(new Counted(1));
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(SharedPointer, LastReferenceDeletesAnOwnedObject) {
  coPrf<Counted> first(new Counted(1));
  coPrf<Counted> second = first;
  const std::shared_ptr<Counted> outside = second;
  EXPECT_EQ(first.external(), 0);
  EXPECT_EQ(outside.use_count(), 3);
  first.reset();
  second.reset();
  EXPECT_EQ(Counted::alive, 1);
  coPrf<Counted> back(outside);
  EXPECT_EQ(back.get(), outside.get());
  EXPECT_EQ(outside.use_count(), 2);
}

// Other deleters are kept, and make no object external; nor is none.
TEST(SharedPointer, ExternalObjectOutlivesItsReferences) {
  ASSERT_EQ(Counted::alive, 0);
  int deletions = 0;
  EXPECT_EQ(coPrf<Counted>(std::shared_ptr<Counted>(nullptr, [&](Counted*) { ++deletions; })).external(), 0);
  EXPECT_EQ(deletions, 1);
  EXPECT_EQ(coPrf<Counted>(coPrfExtern{}, nullptr).external(), 0);
  {
    Counted host_owned(1);
    {
      coPrf<Counted> first(coPrfExtern{}, &host_owned);
      coPrf<Counted> second(static_cast<std::shared_ptr<Counted>>(first));
      EXPECT_EQ(first.external(), 1);
      EXPECT_EQ(second.external(), 1);
    }
    EXPECT_EQ(Counted::alive, 1);
  }
  EXPECT_EQ(Counted::alive, 0);
}

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

}  // namespace
