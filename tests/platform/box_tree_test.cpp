// The box tree against a comparison with every box.
#include "platform/spatial/box_tree.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/spatial/morton_order.h"
#include "support/random.h"

namespace {

bool overlap(const giBox3& a, const giBox3& b) { return a.crosses(b, 0.0); }

std::vector<int> found_by_tree(const BoxTree& tree, const giBox3& query) {
  std::vector<int> found;
  tree.visit_crossing(query, [&](int i) { found.push_back(i); });
  std::sort(found.begin(), found.end());
  return found;
}

std::vector<int> found_by_all(const std::vector<giBox3>& boxes, const giBox3& query) {
  std::vector<int> found;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (overlap(boxes[i], query)) found.push_back(static_cast<int>(i));
  }
  return found;
}

// Coordinates on a grid, so that boxes touch; far from zero, where single precision cannot tell them apart; stray and
// infinite ones, and ones that are not numbers.
double coordinate(Random& random, double offset) {
  constexpr double odd[] = {HUGE_VAL, -HUGE_VAL, std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, 1e30};
  if (random.one_in(60)) return odd[random.below(6)];
  return offset + random.below(30);
}

giBox3 random_box(Random& random, double offset) {
  if (random.one_in(50)) return giBox3();
  const giPoint3 low(coordinate(random, offset), coordinate(random, offset), coordinate(random, offset));
  return giBox3(low, giPoint3(low.x + random.below(4), low.y + random.below(4), low.z + random.below(4)));
}

TEST(BoxTree, FindsExactlyTheBoxesThatOverlap) {
  Random random(11);
  std::size_t found_total = 0;
  for (const int count : {0, 1, 8, 9, 64, 65, 600, 5000}) {
    for (const double offset : {0.0, 1e9, -1e13}) {
      std::vector<giBox3> boxes;
      for (int i = 0; i < count; ++i) boxes.push_back(random_box(random, offset));
      const BoxTree tree(boxes);
      for (int q = 0; q < 50; ++q) {
        const giBox3 query = random_box(random, offset);
        const std::vector<int> expected = found_by_all(boxes, query);
        ASSERT_EQ(found_by_tree(tree, query), expected) << count << " boxes at " << offset;
        found_total += expected.size();
      }
    }
  }
  EXPECT_GT(found_total, 1000u);
}

// One box at 1e30 among a thousand small ones must not put all the others into one place of the curve: a search would
// then look at most of the blocks. Counted by what is visited through the exact comparison, so the boxes overlap
// nothing.
TEST(BoxTree, KeepsApartWhatLiesTogetherBesideAStrayBox) {
  std::vector<FloatBox> boxes;
  Random random(5);
  for (int i = 0; i < 4096; ++i) {
    const giPoint3 low(random.unit(), random.unit(), random.unit());
    boxes.push_back(FloatFrame().map(low, giPoint3(low.x + 0.01, low.y + 0.01, low.z + 0.01)));
  }
  boxes.push_back(FloatFrame().map(giPoint3(1e30, 1e30, 1e30), giPoint3(1e30, 1e30, 1e30)));
  std::vector<FloatBox> ordered;
  for (const int i : morton_order(boxes)) ordered.push_back(boxes[static_cast<std::size_t>(i)]);
  const BoxBlocks blocks(ordered);
  int visited = 0;
  for (const FloatBox& box : boxes)
    blocks.visit_blocks(
        box, [](int, int) { return false; }, [&](int) { ++visited; });
  EXPECT_LT(visited, 20 * 4096);
}

}  // namespace
