#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <map>
#include <numeric>
#include <random>
#include <set>
#include <vector>

#include "platform/containers/int_set.h"
#include "platform/containers/int_table.h"
#include "platform/containers/set.h"

namespace {

// An entry whose hash the test chooses.
struct Entry {
  int key = 0;
  int hash = 0;

  Entry() = default;
  Entry(int k, int h) : key(k), hash(h) {}
  bool operator==(const Entry& other) const { return key == other.key; }
  int co_hash() const { return hash; }
};
using EntrycoSet = coSet<Entry>;
using EntrycoSetcoIterator = coSetcoIterator<Entry>;

using Naive = std::set<std::pair<int, int>>;

Naive members(const EntrycoSet& set) {
  Naive found;
  EntrycoSetcoIterator it(set);
  while (++it) EXPECT_TRUE(found.emplace(it().key, it().hash).second);
  EXPECT_EQ(static_cast<int>(found.size()), set.count());
  return found;
}

int running_hash(const Naive& naive) {
  int hash = 0;
  for (const auto& entry : naive) hash ^= entry.second;
  return hash;
}

TEST(Set, DoublesOnceHalfFull) {
  EntrycoSet set;
  EXPECT_EQ(set.table_size(), 16);
  for (int k = 1; k <= 16; ++k) {
    set.add(Entry(k, k * 77));
    EXPECT_EQ(set.table_size(), k < 8 ? 16 : k < 16 ? 32 : 64) << k;
  }
}

TEST(Set, LoadAndSizeOutOfRangeStayUsable) {
  const struct { int log2, load; } cases[] = {{0, 50}, {0, 100}, {4, 100}, {4, 1000}, {4, 0}, {4, -5}, {-3, 50}, {2, 99}};
  for (const auto& c : cases) {
    EntrycoSet set(c.log2, c.load);
    for (int k = 0; k < 100; ++k) set.add(Entry(k, k));
    EXPECT_EQ(set.count(), 100) << c.log2 << ' ' << c.load;
    EXPECT_LE(set.table_size(), 32768) << c.log2 << ' ' << c.load;
    for (int k = 0; k < 120; ++k) EXPECT_EQ(set.find(Entry(k, k)).key, k < 100 ? k : 0);
  }
}

// Few distinct hashes make long chains that wrap round the table; removal must close every gap. Equal entries meet only
// when their hashes agree; what an addition or removal met is returned.
TEST(Set, RandomOperationsMatchANaiveSet) {
  std::mt19937 random(23);
  int removals = 0;
  for (int round = 0; round < 60; ++round) {
    const int hashes = 1 << (round % 8);
    EntrycoSet set(static_cast<int>(random() % 5), 30 + static_cast<int>(random() % 71));
    Naive naive;
    for (int step = 0; step < 400; ++step) {
      const int key = static_cast<int>(random() % 60);
      const Entry entry(key, static_cast<int>(random() % hashes) * 0x01000193);
      if (random() % 100 == 0) {
        set.rehash(static_cast<int>(random() % 9));
      } else if (random() % 20 == 0) {
        const Entry gone = set.remove_any();
        naive.erase({gone.key, gone.hash});
      } else if (random() % 5 < 3) {
        ASSERT_EQ(&set.add(entry) == &EntrycoSet::nil(), naive.emplace(entry.key, entry.hash).second);
      } else {
        const bool removed = naive.erase({entry.key, entry.hash}) != 0;
        ASSERT_EQ(&set.find(entry) != &EntrycoSet::nil(), removed);
        ASSERT_EQ(set.remove(entry).key, removed ? entry.key : 0);
        removals += removed;
      }
      ASSERT_EQ(set.running_hash(), running_hash(naive));
    }
    ASSERT_EQ(members(set), naive);
    while (set.count() > 0) naive.erase({set.find(set.remove_any()).key, 0});
    EXPECT_EQ(set.running_hash(), 0);
  }
  EXPECT_GT(removals, 1000);
}

// 100 000 entries of one hash: without the spread each would be compared with all others.
TEST(Set, SpreadKeepsEntriesOfOneHashApart) {
  struct Spread : Entry {
    using Entry::Entry;
    int co_spread() const { return key; }
  };
  coSet<Spread> set;
  for (int k = 1; k <= 100000; ++k) set.add(Spread(k, 7));
  for (int k = 1; k <= 100000; ++k) ASSERT_EQ(set.find(Spread(k, 7)).key, k);
  EXPECT_EQ(set.find(Spread(5, 8)).key, 0);
  while (set.remove_any().key != 0) {
  }
  EXPECT_EQ(set.count(), 0);
}

TEST(Set, AlgebraMatchesANaiveSet) {
  std::mt19937 random(29);
  for (int round = 0; round < 300; ++round) {
    const int hashes = 1 << (round % 7), range = 1 + static_cast<int>(random() % 60);
    EntrycoSet a, b;
    Naive na, nb;
    for (int k = 0; k < range; ++k) {
      const Entry ea(static_cast<int>(random() % range), static_cast<int>(random() % hashes) << 5);
      const Entry eb(static_cast<int>(random() % range), static_cast<int>(random() % hashes) << 5);
      if (random() % 4) a.add(ea), na.emplace(ea.key, ea.hash);
      if (random() % 2) b.add(eb), nb.emplace(eb.key, eb.hash);
    }
    Naive expected;
    ASSERT_EQ(a <= b, std::includes(nb.begin(), nb.end(), na.begin(), na.end()));
    EntrycoSet result(utCopy{}, a);
    switch (round % 3) {
      case 0:
        result += b;
        std::set_union(na.begin(), na.end(), nb.begin(), nb.end(), std::inserter(expected, expected.end()));
        ASSERT_TRUE(a <= result && b <= result);
        break;
      case 1:
        result -= b;
        std::set_difference(na.begin(), na.end(), nb.begin(), nb.end(), std::inserter(expected, expected.end()));
        break;
      default:
        result *= b;
        std::set_intersection(na.begin(), na.end(), nb.begin(), nb.end(), std::inserter(expected, expected.end()));
        ASSERT_TRUE(result <= a && result <= b);
    }
    ASSERT_EQ(members(result), expected) << round;
    ASSERT_EQ(result.running_hash(), running_hash(expected));
    ASSERT_EQ(members(a), na);
  }
}

TEST(Set, AlgebraWithItselfAndTheTableOfAUnion) {
  EntrycoSet set{Entry(1, 10), Entry(2, 20), Entry(3, 30)};
  set += set;
  set *= set;
  set += EntrycoSet(8, 50);
  EXPECT_EQ(set.count(), 3);
  EXPECT_EQ(set.table_size(), 256) << "the larger table";
  const auto& itself = set;
  set -= itself;
  EXPECT_EQ(set.count(), 0);
  EXPECT_EQ(set.running_hash(), 0);
}

TEST(Set, ResizeEmptiesAndKeepsOrChangesTheTable) {
  EntrycoSet set;
  for (int k = 0; k < 20; ++k) set.add(Entry(k, k));
  EXPECT_EQ(set.table_size(), 64);
  set.resize(2, 0);
  EXPECT_EQ(set.table_size(), 64);
  EXPECT_EQ(set.count(), 0);
  EXPECT_EQ(set.running_hash(), 0);
  EXPECT_EQ(&set.find(Entry(3, 3)), &EntrycoSet::nil());
  set.add(Entry(3, 3));
  set.resize(2, 1);
  EXPECT_EQ(set.table_size(), 4);
  EXPECT_EQ(set.count(), 0);
  // Rehashing to a table too small for the entries grows it while they are put back.
  for (int k = 0; k < 20; ++k) set.add(Entry(k, k));
  set.rehash(0);
  EXPECT_EQ(set.table_size(), 64);
  EXPECT_EQ(set.count(), 20);
}

TEST(Set, ACopyIsWalkedInTheOrderOfItsSource) {
  EntrycoSet set(2, 90);
  for (int k = 0; k < 25; ++k) set.add(Entry(k, k % 3));
  for (int k = 0; k < 25; k += 4) set.remove(Entry(k, k % 3));
  const EntrycoSet copy(utCopy{}, set);
  EXPECT_EQ(copy.table_size(), set.table_size());
  EntrycoSetcoIterator a(set), b(copy);
  while (++a) {
    ASSERT_TRUE(++b);
    EXPECT_EQ(a().key, b().key);
  }
  EXPECT_FALSE(++b);
  EXPECT_EQ(set.remove_any().key, b.do_first() ? b().key : -1);
}

std::vector<int> walk(const intcoSet& set) {
  std::vector<int> found;
  intcoSetcoIterator it(set);
  while (++it) found.push_back(it());
  return found;
}

// The order in which holes are filled follows from this: a table of 2^k slots holds numbers below 2^k in ascending order,
// and others by their low bits. Emptied, a table has its first size again.
TEST(IntSet, NumbersStandAtTheirLowBits) {
  intcoSet set;
  for (int v = 0; v < 1000; ++v) set.add(v * 7 % 1000);
  std::vector<int> ascending(1000);
  std::iota(ascending.begin(), ascending.end(), 0);
  EXPECT_EQ(walk(set), ascending);
  set.clear();
  EXPECT_EQ(set.table_size(), 16);
  EXPECT_EQ(walk(intcoSet{33, 5, -1, 18}), (std::vector<int>{33, 18, 5, -1}));
}

TEST(IntSet, RandomOperationsMatchANaiveSet) {
  std::mt19937 random(31);
  const int extremes[] = {0, -1, INT_MAX, INT_MIN, 1 << 20, -(1 << 20)};
  for (int round = 0; round < 60; ++round) {
    intcoSet set(static_cast<int>(random() % 6), static_cast<int>(random() % 120));
    intintcoTable table(static_cast<int>(random() % 6), static_cast<int>(random() % 120));
    std::set<int> naive;
    std::map<int, int> naive_table;
    const int stride = round % 2 ? 1 : 4096;
    for (int step = 0; step < 600; ++step) {
      const int v = random() % 10 == 0 ? extremes[random() % 6] : (static_cast<int>(random() % 80) - 40) * stride;
      if (random() % 2) {
        ASSERT_EQ(set.add(v), static_cast<int>(naive.insert(v).second));
        ASSERT_EQ(table.set(v, step), static_cast<int>(naive_table.count(v) == 0));
        naive_table[v] = step;
      } else {
        ASSERT_EQ(set.remove(v), static_cast<int>(naive.erase(v)));
        ASSERT_EQ(table.remove(v), static_cast<int>(naive_table.erase(v)));
      }
      ASSERT_EQ(set.member(v), static_cast<int>(naive.count(v)));
    }
    std::vector<int> seen = walk(set);
    std::sort(seen.begin(), seen.end());
    ASSERT_EQ(seen, std::vector<int>(naive.begin(), naive.end()));
    ASSERT_EQ(set.count(), static_cast<int>(naive.size()));
    int hash = 0;
    for (int v : naive) hash ^= v;
    ASSERT_EQ(set.running_hash(), hash);
    std::map<int, int> pairs;
    intintcoTablecoIterator it(table);
    while (++it) ASSERT_TRUE(pairs.emplace(it(), it.value()).second);
    ASSERT_EQ(pairs, naive_table);
    for (int v = -50; v < 50; ++v) {
      ASSERT_EQ(table.value(v, -77), naive_table.count(v) ? naive_table[v] : -77);
      ASSERT_EQ(table.member(v), static_cast<int>(naive_table.count(v)));
    }
    intcoSet copy(set);
    ASSERT_EQ(walk(copy), walk(set));
    ASSERT_TRUE(copy == set);
    copy.add(12345);
    ASSERT_TRUE(copy != set);
    set = copy;
    ASSERT_TRUE(copy == set);
    set.clear();
    ASSERT_EQ(set.count(), 0);
    ASSERT_EQ(set.running_hash(), 0);
    ASSERT_FALSE(set.member(12345));
  }
}

TEST(IntSet, RemovingDuringAWalkSkipsNothing) {
  intcoSet set;
  for (int v = 0; v < 1000; ++v) set.add(v * 7);
  intcoSetcoIterator it(set);
  int seen = 0;
  while (++it) {
    ++seen;
    set.remove(it());
  }
  EXPECT_EQ(seen, 1000);
  EXPECT_EQ(set.count(), 0);
}

// Multiples of 65536 share all low bits of a table of 2^16 slots, and taking out and putting in by turns leaves marks; either would
// take 10^10 steps if searches walked over them.
TEST(IntSet, StridedNumbersAndTurnoverStayFast) {
  intcoSet set;
  for (int v = -15000; v < 15000; ++v) set.add(v * 65536);
  EXPECT_EQ(set.count(), 30000);
  for (int v = -15000; v < 15000; ++v) ASSERT_TRUE(set.member(v * 65536));
  for (int k = 0; k < 300000; ++k) {
    ASSERT_EQ(set.add(k * 16 + 1), 1);
    ASSERT_EQ(set.remove(k * 16 + 1), 1);
  }
  EXPECT_EQ(set.count(), 30000);
}

}  // namespace
