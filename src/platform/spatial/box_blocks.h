#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "platform/containers/large_vector.h"
#include "platform/spatial/float_box.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Eight boxes side by side, so that one box is compared with all of them at once.
struct alignas(32) BoxBlock {
  static constexpr int width = 8;

  float low[3][width];
  float high[3][width];

  void set(int lane, const FloatBox& box) {
    for (int k = 0; k < 3; ++k) {
      low[k][lane] = box.low[k];
      high[k][lane] = box.high[k];
    }
  }
  FloatBox get(int lane) const {
    FloatBox box;
    for (int k = 0; k < 3; ++k) {
      box.low[k] = low[k][lane];
      box.high[k] = high[k][lane];
    }
    return box;
  }
  FloatBox whole() const {
    FloatBox box;
    for (int lane = 0; lane < width; ++lane) box.merge(get(lane));
    return box;
  }

  /// Bit i is set when box i overlaps `box`, inclusive.
  unsigned overlapping(const FloatBox& box) const {
#if defined(__SSE2__)
    unsigned found = 0;
    for (int half = 0; half < width; half += 4) {
      __m128 both = _mm_castsi128_ps(_mm_set1_epi32(-1));
      for (int k = 0; k < 3; ++k) {
        both = _mm_and_ps(both, _mm_cmple_ps(_mm_load_ps(&low[k][half]), _mm_set1_ps(box.high[k])));
        both = _mm_and_ps(both, _mm_cmple_ps(_mm_set1_ps(box.low[k]), _mm_load_ps(&high[k][half])));
      }
      found |= static_cast<unsigned>(_mm_movemask_ps(both)) << half;
    }
    return found;
#else
    unsigned found = 0;
    for (int lane = 0; lane < width; ++lane) found |= static_cast<unsigned>(get(lane).overlaps(box)) << lane;
    return found;
#endif
  }
};

/// The number of the lowest bit that is set; there must be one.
inline int lowest_bit(unsigned bits) { return __builtin_ctz(bits); }

/// Bounding boxes over a list of boxes: the list is cut into blocks of eight, the boxes of these blocks form a list
/// that is cut in the same way, and so on up to a single block. So a block is found by its number and there are no
/// pointers. Neighbours in the list should be near in space. Memory: 28 bytes a box.
class BoxBlocks {
 public:
  BoxBlocks() : BoxBlocks(std::vector<FloatBox>()) {}
  explicit BoxBlocks(const std::vector<FloatBox>& boxes)
      : BoxBlocks(boxes.size(), [&](std::size_t i) { return boxes[i]; }) {}
  /// Over `size` boxes, box(i) being the i-th of them.
  template <class Box>
  BoxBlocks(std::size_t size, Box box) {
    std::vector<FloatBox> upper = add_level(size, box);
    while (upper.size() > 1) {
      const std::vector<FloatBox> lower = std::move(upper);
      upper = add_level(lower.size(), [&](std::size_t i) { return lower[i]; });
    }
  }

  /// Blocks of the list itself, and the block that holds boxes 8 b to 8 b + 7; those behind the end overlap nothing.
  int count() const { return level_count_[0]; }
  const BoxBlock& block(int b) const { return blocks_[static_cast<std::size_t>(b)]; }

  /// What block b of the list lies in.
  FloatBox boundary(int b) const {
    if (levels_ == 1) return block(b).whole();
    return at({1, b / BoxBlock::width}).get(b % BoxBlock::width);
  }

  /// Calls visit(b) for the blocks of the list, ascending, whose boundary overlaps `box`, apart from those that lie in
  /// a stretch of blocks for which skip(first, last) holds; it may be asked about any stretch.
  template <class Skip, class Visit>
  void visit_blocks(const FloatBox& box, Skip skip, Visit visit) const {
    Place stack[max_levels * BoxBlock::width];
    int pending = 0;
    stack[pending++] = {top_level(), 0};
    while (pending > 0) {
      const Place place = stack[--pending];
      if (place.level == 0) {
        visit(place.block);
        continue;
      }
      unsigned found = at(place).overlapping(box);
      while (found != 0) {
        const int lane = highest_bit(found);
        found ^= 1u << lane;
        const Place child{place.level - 1, place.block * BoxBlock::width + lane};
        if (!skip(first_block(child), last_block(child))) stack[pending++] = child;
      }
    }
  }

 private:
  static constexpr int max_levels = 12;  // 8^11 boxes and more
  struct Place {
    int level;
    int block;
  };

  static int highest_bit(unsigned bits) { return 31 - __builtin_clz(bits); }
  int top_level() const { return levels_ - 1; }
  const BoxBlock& at(Place place) const {
    return blocks_[level_start_[place.level] + static_cast<std::size_t>(place.block)];
  }
  int first_block(Place place) const { return place.block << (3 * place.level); }
  int last_block(Place place) const {
    const long long end = (static_cast<long long>(place.block) + 1) << (3 * place.level);
    return static_cast<int>(std::min<long long>(end, count())) - 1;
  }

  // Appends a level over `boxes` and returns the boundaries of its blocks.
  template <class Box>
  std::vector<FloatBox> add_level(std::size_t size, Box box) {
    constexpr std::size_t width = BoxBlock::width;
    const std::size_t count = std::max<std::size_t>((size + width - 1) / width, 1);
    level_start_[levels_] = blocks_.size();
    level_count_[levels_++] = static_cast<int>(count);
    if (levels_ == 1) blocks_.reserve(count + count / 7 + max_levels);  // an eighth more with every level
    blocks_.resize(blocks_.size() + count);
    std::vector<FloatBox> boundaries(count);
    for (std::size_t i = 0; i < count * width; ++i) {
      const FloatBox next = i < size ? box(i) : FloatBox();
      blocks_[level_start_[levels_ - 1] + i / width].set(static_cast<int>(i % width), next);
      boundaries[i / width].merge(next);
    }
    return boundaries;
  }

  int levels_ = 0;
  std::size_t level_start_[max_levels] = {};
  int level_count_[max_levels] = {};
  coLargeVector<BoxBlock> blocks_;
};

/// Calls walk.visit(i, j), i < j, for the pairs of boxes of the list that overlap.
///
/// Before block a is compared with itself and the blocks behind it, walk.enter(a) is asked, and the walk ends when it
/// says no. Pairs of a with a block in a stretch of blocks for which walk.skip(first, last) holds are left out. Cost:
/// about O(n + pairs) for small boxes that do not pile up.
template <class Walk>
void walk_box_pairs(const BoxBlocks& blocks, Walk& walk) {
  constexpr int width = BoxBlock::width;
  for (int a = 0; a < blocks.count() && walk.enter(a); ++a) {
    const BoxBlock& block_a = blocks.block(a);
    const auto skip = [&](int first, int last) { return last < a || walk.skip(first, last); };
    blocks.visit_blocks(blocks.boundary(a), skip, [&](int b) {
      const BoxBlock& block_b = blocks.block(b);
      for (unsigned lanes = block_a.overlapping(blocks.boundary(b)); lanes != 0; lanes &= lanes - 1) {
        const int i = lowest_bit(lanes);
        unsigned others = block_b.overlapping(block_a.get(i));
        if (a == b) others &= ~1u << i;
        for (; others != 0; others &= others - 1) walk.visit(width * a + i, width * b + lowest_bit(others));
      }
    });
  }
}
