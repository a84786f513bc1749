#include "platform/spatial/morton_order.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace {

constexpr int steps_bits = 21;  // three of them fill a code of 63 bits

struct Entry {
  std::uint64_t code;
  int number;
};

bool overlaps_nothing(const FloatBox& box) { return !(box.low[0] <= box.high[0]); }

double centre(const FloatBox& box, int axis) { return 0.5 * box.low[axis] + 0.5 * box.high[axis]; }

// The stretch of an axis that the curve fills.
struct Stretch {
  double low = 0.0;
  double high = 0.0;

  std::uint64_t step(double x) const {
    if (!(x > low)) return 0;
    constexpr double steps = 1 << steps_bits;
    const double at = (x - low) / (high - low) * steps;
    return at < steps - 1.0 ? static_cast<std::uint64_t>(at) : (std::uint64_t{1} << steps_bits) - 1;
  }
};

// All centres when that is not much longer than the middle nine tenths of a sample of them, else some lengths of those
// beyond each end.
template <class Boxes>
Stretch stretch_of(const Boxes& boxes, int axis) {
  constexpr std::size_t sample_size = 1000;
  const std::size_t stride = boxes.size() / sample_size + 1;
  std::vector<double> sample;
  double low = HUGE_VAL, high = -HUGE_VAL;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (overlaps_nothing(boxes[i])) continue;
    const double x = centre(boxes[i], axis);
    low = std::min(low, x);
    high = std::max(high, x);
    if (i % stride == 0) sample.push_back(x);
  }
  if (sample.size() < 40) return {low, high};
  const std::size_t tail = sample.size() / 20;
  std::sort(sample.begin(), sample.end());
  const double from = sample[tail], to = sample[sample.size() - 1 - tail];
  const double margin = 16.0 * (to - from);
  if (margin == 0.0) return {low, high};
  return {std::max(low, from - margin), std::min(high, to + margin)};
}

// The lowest 21 bits of x with two zero bits before each.
std::uint64_t spread(std::uint64_t x) {
  x = (x | x << 32) & 0x1f00000000ffffu;
  x = (x | x << 16) & 0x1f0000ff0000ffu;
  x = (x | x << 8) & 0x100f00f00f00f00fu;
  x = (x | x << 4) & 0x10c30c30c30c30c3u;
  return (x | x << 2) & 0x1249249249249249u;
}

template <class Boxes>
coLargeVector<Entry> coded(const Boxes& boxes) {
  const std::array<Stretch, 3> stretch = {stretch_of(boxes, 0), stretch_of(boxes, 1), stretch_of(boxes, 2)};
  coLargeVector<Entry> entries(boxes.size());
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    entries[i] = {std::uint64_t{1} << (3 * steps_bits), static_cast<int>(i)};
    if (overlaps_nothing(boxes[i])) continue;
    std::uint64_t code = 0;
    for (int k = 0; k < 3; ++k) code |= spread(stretch[static_cast<std::size_t>(k)].step(centre(boxes[i], k))) << k;
    entries[i].code = code;
  }
  return entries;
}

// The upper bits by radix, the least significant digit first; what they leave equal, mostly little or nothing, by
// comparison.
void sort_by_code(coLargeVector<Entry>& entries) {
  constexpr int digit_bits = 11;
  constexpr int lowest_shift = 64 - 3 * digit_bits;
  constexpr std::size_t digits = std::size_t{1} << digit_bits;
  coLargeVector<Entry> sorted(entries.size());
  std::vector<std::size_t> starts(digits);
  for (int shift = lowest_shift; shift < 64; shift += digit_bits) {
    const auto digit = [shift](const Entry& entry) { return (entry.code >> shift) & (digits - 1); };
    std::fill(starts.begin(), starts.end(), 0);
    for (const Entry& entry : entries) ++starts[digit(entry)];
    std::size_t sum = 0;
    for (std::size_t& start : starts) sum += std::exchange(start, sum);
    for (const Entry& entry : entries) sorted[starts[digit(entry)]++] = entry;
    entries.swap(sorted);
  }
  for (auto from = entries.begin(); from != entries.end();) {
    auto to = from + 1;
    while (to != entries.end() && to->code >> lowest_shift == from->code >> lowest_shift) ++to;
    if (to - from > 1) {
      std::sort(from, to, [](const Entry& a, const Entry& b) {
        return a.code != b.code ? a.code < b.code : a.number < b.number;
      });
    }
    from = to;
  }
}

template <class Boxes>
std::vector<int> order_of(const Boxes& boxes) {
  coLargeVector<Entry> entries = coded(boxes);
  sort_by_code(entries);
  std::vector<int> order(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) order[i] = entries[i].number;
  return order;
}

}  // namespace

std::vector<int> morton_order(const std::vector<FloatBox>& boxes) { return order_of(boxes); }
std::vector<int> morton_order(const coLargeVector<FloatBox>& boxes) { return order_of(boxes); }
