#include "platform/triangulation/insertion_order.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

#include "platform/geometry/box2.h"
#include "platform/spatial/hash_mix.h"

namespace {

constexpr int curve_bits = 28;
constexpr std::size_t first_round = 250;  // points of the smallest round, about

// The position along a Hilbert curve over a square of 2^curve_bits cells a side.
std::uint64_t curve_position(std::uint32_t x, std::uint32_t y) {
  std::uint64_t position = 0;
  for (int bit = curve_bits - 1; bit >= 0; --bit) {
    const std::uint32_t right = (x >> bit) & 1u;
    const std::uint32_t up = (y >> bit) & 1u;
    position = (position << 2) | ((3u * right) ^ up);
    if (up == 0u) {
      if (right == 1u) {
        x = ~x;
        y = ~y;
      }
      std::swap(x, y);
    }
  }
  return position;
}

// Cells of the curve over the box of the points.
class CurveGrid {
 public:
  explicit CurveGrid(const std::vector<giPoint2>& points) {
    giBox2 box;
    for (const giPoint2& p : points) box.merge(p);
    low_ = box.min();
    const double width = std::max(box.max().x - low_.x, box.max().y - low_.y);
    cells_ = width > 0.0 ? (static_cast<double>(1u << curve_bits) - 1.0) / width : 0.0;
  }
  std::uint64_t position(const giPoint2& p) const {
    return curve_position(static_cast<std::uint32_t>((p.x - low_.x) * cells_),
                          static_cast<std::uint32_t>((p.y - low_.y) * cells_));
  }

 private:
  giPoint2 low_;
  double cells_ = 0.0;
};

// 0 for half of the indices, 1 for a quarter and so on, up to `last`.
std::uint64_t round_from_end(std::size_t index, std::uint64_t last) {
  std::uint64_t bits = mix_hash(index);
  std::uint64_t round = 0;
  while (round < last && (bits & 1u) != 0u) {
    bits >>= 1;
    ++round;
  }
  return round;
}

// Moves the points of large weight to earlier rounds: of round k those among the n / 2^(last - k) of largest weight.
void promote(const std::vector<double>& weight, std::uint64_t last, std::vector<std::uint64_t>& round) {
  std::vector<int> ranked(weight.size());
  std::iota(ranked.begin(), ranked.end(), 0);
  const auto weight_of = [&](int i) { return weight[static_cast<std::size_t>(i)]; };
  std::sort(ranked.begin(), ranked.end(), [&](int a, int b) {
    return weight_of(a) > weight_of(b) || (weight_of(a) == weight_of(b) && mix_hash(static_cast<std::uint64_t>(a)) <
                                                                               mix_hash(static_cast<std::uint64_t>(b)));
  });
  std::uint64_t latest = 0;
  for (std::size_t rank = 0; rank < ranked.size(); ++rank) {
    while (latest < last && rank >= (ranked.size() >> (last - latest))) ++latest;
    std::uint64_t& own = round[static_cast<std::size_t>(ranked[rank])];
    own = std::min(own, latest);
  }
}

}  // namespace

InsertionOrder insertion_order(const std::vector<giPoint2>& points, const std::vector<double>& weight) {
  struct Entry {
    std::uint64_t key;
    int index;
    bool operator<(const Entry& other) const { return key < other.key || (key == other.key && index < other.index); }
  };
  std::uint64_t last_round = 0;
  while ((points.size() >> last_round) > first_round) ++last_round;
  std::vector<std::uint64_t> round(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) round[i] = last_round - round_from_end(i, last_round);
  if (!weight.empty()) promote(weight, last_round, round);
  const CurveGrid grid(points);
  std::vector<Entry> entries(points.size());
  for (std::size_t i = 0; i < points.size(); ++i)
    entries[i] = {(round[i] << (2 * curve_bits)) | grid.position(points[i]), static_cast<int>(i)};
  std::sort(entries.begin(), entries.end());
  InsertionOrder result;
  result.order.reserve(points.size());
  for (const Entry& entry : entries) {
    while (result.round_end.size() < entry.key >> (2 * curve_bits)) result.round_end.push_back(result.order.size());
    result.order.push_back(entry.index);
  }
  result.round_end.push_back(result.order.size());
  return result;
}
