#include "platform/spatial/point_index.h"
#include "platform/utilities/prefetch.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>

namespace {


// Adding 1.5 * 2^52 rounds a double below 2^51 in magnitude to a whole number, which then stands in the low bits of the sum.
constexpr double rounding = 6755399441055744.0;

// Odd numbers with irregular bits: 2^64 divided by the golden ratio, and two multipliers of A. Appleby's MurmurHash3 (2011).
constexpr std::uint64_t x_factor = 0x9E3779B97F4A7C15u;
constexpr std::uint64_t y_factor = 0x87C37B91114253D5u;
constexpr std::uint64_t z_factor = 0x4CF5AD432745937Fu;
constexpr std::uint64_t mix_factor = 0xFF51AFD7ED558CCDu;

// Squares that underflow are off by up to 2^-1075 each, so points up to 2.3e-162 farther apart than the tolerance can match.
constexpr double underflow_slack = 1e-161;

std::uint64_t bits_of(double x) {
  std::uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  return bits;
}

std::uint32_t tag_of(std::uint64_t mixed) {
  mixed = (mixed ^ mixed >> 32) * mix_factor;
  return static_cast<std::uint32_t>(mixed >> 32);
}

bool finite(const giPoint3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }
bool has_nan(const giPoint3& p) { return std::isnan(p.x) || std::isnan(p.y) || std::isnan(p.z); }

// 0 for a finite coordinate, 1 for +inf, 2 for -inf.
int class_of(double x) { return std::isinf(x) ? (x > 0 ? 1 : 2) : 0; }

int class_of(const giPoint3& p) { return 9 * class_of(p.x) + 3 * class_of(p.y) + class_of(p.z); }

// Whether points of the two classes have a squared distance: not when both have the same infinity on one axis.
bool comparable(int a, int b) {
  for (; a > 0 && b > 0; a /= 3, b /= 3) {
    if (a % 3 != 0 && a % 3 == b % 3) return false;
  }
  return true;
}

}  // namespace

PointIndex::PointIndex(double tol, Winner winner)
    : tol_(tol),
      reach_sq_(tol * tol),
      reach_(std::fabs(tol) * (1.0 + 0x1p-30) + underflow_slack),
      cells_per_unit_(0.25 / reach_),
      grid_end_(0x1p53 * reach_),
      grid_last_(std::nextafter(grid_end_, 0.0)),
      winner_(winner),
      kind_(std::isnan(reach_sq_) ? Reach::nothing : std::isinf(reach_sq_) ? Reach::everything : Reach::near_points),
      conditions_on_x_(winner == Winner::tree_order && std::isnormal(reach_sq_)),
      apart_(!(conditions_on_x_ && tol < 0.0)),
      records_(10, 5, 10),
      greatest_x_(-std::numeric_limits<double>::infinity()) {
  std::fill(std::begin(class_best_), std::end(class_best_), -1);
}

// A monotone function of x: cells of four reaches, 2^51 of them on either side. Just inside grid_end_ doubles are a reach apart,
// and the reach is longer than the tolerance by more than all rounding: so no match lies across that border, and none farther out
// but an equal coordinate.
std::uint64_t PointIndex::cell(double x) const {
  return bits_of(std::fabs(x) < grid_end_ ? x * cells_per_unit_ + rounding : x + 0.0);
}

// The cells of all coordinates within reach: one or two, or three where rounding is coarse.
PointIndex::CellRange PointIndex::cells_near(double x) const {
  if (!(std::fabs(x) < grid_end_)) return {cell(x), cell(x)};
  return {cell(std::max(x - reach_, -grid_last_)), cell(std::min(x + reach_, grid_last_))};
}

// Visits the tags of the cells that the ball round p touches, save the one that p is in.
template <class Visit>
void PointIndex::for_neighbours(const giPoint3& p, Probe probe, Visit visit) const {
  const CellRange x = cells_near(p.x), y = cells_near(p.y), z = cells_near(p.z);
  for (std::uint64_t i = x.first; i <= x.last; ++i) {
    for (std::uint64_t j = y.first; j <= y.last; ++j) {
      for (std::uint64_t k = z.first; k <= z.last; ++k) {
        const std::uint32_t tag = tag_of(i * x_factor + j * y_factor + k * z_factor);
        if (tag != probe.home) visit(tag);
      }
    }
  }
}

PointIndex::Probe PointIndex::probe(const giPoint3& p) const {
  return {tag_of(cell(p.x) * x_factor + cell(p.y) * y_factor + cell(p.z) * z_factor)};
}

void PointIndex::prefetch_record(const giPoint3& p, Probe probe) const {
  const std::size_t mask = size() - 1;
  for (std::size_t k = probe.home >> shift_; slots_[k].position != 0; k = (k + 1) & mask) {
    if (slots_[k].tag != probe.home) continue;
    co_prefetch_for_reading(&records_.at(static_cast<int>(slots_[k].position - 1)));
    return;
  }
  if (kind_ == Reach::near_points && finite(p)) {
    for_neighbours(p, probe, [this](std::uint32_t tag) { co_prefetch_for_reading(&slots_[tag >> shift_]); });
  }
}

int PointIndex::find(const giPoint3& p) const {
  const int found = search(p, probe(p));
  return found < 0 ? -1 : records_.at(found).number;
}

int PointIndex::find_or_add_position(const giPoint3& p, int number, Probe probe) {
  const int found = search(p, probe);
  if (found < 0) keep(p, number, probe);
  return found;
}

void PointIndex::keep(const giPoint3& p, int number) {
  apart_ = false;
  keep(p, number, probe(p));
}

int PointIndex::search(const giPoint3& p, Probe probe) const {
  if (kind_ != Reach::near_points) return kind_ == Reach::nothing ? -1 : search_classes(p);
  Search search{p};
  if (!search_cell(probe.home, search) && finite(p)) {
    for_neighbours(p, probe, [&](std::uint32_t tag) { search_cell(tag, search); });
  }
  return search.best;
}


// Looks at all records whose cell has this tag; other cells may share it, but the distance decides. True when a record at p itself
// makes looking further needless, since no other can match.
bool PointIndex::search_cell(std::uint32_t tag, Search& search) const {
  const std::size_t mask = size() - 1;
  for (std::size_t k = tag >> shift_; slots_[k].position != 0; k = (k + 1) & mask) {
    if (slots_[k].tag != tag) continue;
    const int position = static_cast<int>(slots_[k].position - 1);
    const Record& record = records_.at(position);
    const double dx = search.p.x - record.x, dy = search.p.y - record.y, dz = search.p.z - record.z;
    if (!(dx * dx + dy * dy + dz * dz <= reach_sq_)) continue;
    if (apart_ && dx == 0.0 && dy == 0.0 && dz == 0.0) {
      search.best = position;
      return true;
    }
    consider(position, search);
  }
  return false;
}

int PointIndex::search_classes(const giPoint3& p) const {
  int best = -1;
  if (has_nan(p)) return best;
  for (int c = 0; c < 27; ++c) {
    const int position = class_best_[c];
    if (position >= 0 && comparable(class_of(p), c) && (best < 0 || better(position, best))) best = position;
  }
  return best;
}

void PointIndex::consider(int position, Search& search) const {
  if (position == search.best || (conditions_on_x_ && tol_ < 0.0 && lies_behind(position, search))) return;
  if (conditions_on_x_ && cut_off(position, search.p.x)) {
    apart_ = false;
  } else if (search.best < 0 || better(position, search.best)) {
    search.best = position;
  }
}

// Under a negative tolerance a search of the tree ends at the first record that meets neither condition on x, and the later ones of
// that kind are out of reach. However many lie together, only the first takes a look at the order.
bool PointIndex::lies_behind(int position, Search& search) const {
  const double at = records_.at(position).x;
  if (at + tol_ >= search.p.x || search.p.x >= at - tol_) return false;
  if (search.end >= 0 && search.end < position) return true;
  search.end = position;
  return false;
}

bool PointIndex::better(int position, int than) const {
  if (winner_ == Winner::lowest_number) return records_.at(position).number < records_.at(than).number;
  try {
    complete_order();
    return order_.precedes(key(position), key(than));
  } catch (const std::bad_alloc&) {
    co_entry_lost();
    return position < than;
  }
}

// Whether the tree's conditions on x keep a search for this x from reaching the record. Conditions that the record itself meets
// are met by all entries on the way to it.
bool PointIndex::cut_off(int position, double x) const {
  const double at = records_.at(position).x;
  if (at + tol_ >= x && x >= at - tol_) return false;
  try {
    complete_order();
    return !order_.reachable(key(position), x, tol_);
  } catch (const std::bad_alloc&) {
    co_entry_lost();
    return false;
  }
}

void PointIndex::complete_order() const {
  for (; ordered_ < records_.count(); ++ordered_) order_.add(key(ordered_));
}

void PointIndex::keep(const giPoint3& p, int number, Probe probe) {
  if (kind_ == Reach::nothing || (winner_ == Winner::tree_order && hidden(p.x))) return;
  const bool in_grid = kind_ == Reach::near_points && finite(p);
  const bool in_class = kind_ == Reach::everything && !has_nan(p);
  if (!in_grid && !in_class && winner_ != Winner::tree_order) return;
  const int position = records_.count();
  if ((in_grid && !grow(entered_ + 1)) || !records_.expand(position + 1)) return co_entry_lost();
  records_.at(position) = Record{p.x, p.y, p.z, number};
  if (in_grid) enter(probe.home, static_cast<std::uint32_t>(position) + 1);
  if (in_class) keep_class(p, position);
}

// In the tree an entry with a NaN x lies at the right end, behind the greatest x, and a search never passes it.
bool PointIndex::hidden(double x) {
  if (std::isnan(x)) {
    if (!hides_) hidden_from_ = greatest_x_;
    hides_ = true;
    return true;
  }
  if (hides_ && x >= hidden_from_) return true;
  greatest_x_ = std::max(greatest_x_, x);
  return false;
}

void PointIndex::keep_class(const giPoint3& p, int position) {
  int& best = class_best_[class_of(p)];
  if (best < 0 || better(position, best)) best = position;
}

void PointIndex::enter(std::uint32_t tag, std::uint32_t position) {
  const std::size_t mask = size() - 1;
  std::size_t k = tag >> shift_;
  while (slots_[k].position != 0) k = (k + 1) & mask;
  slots_[k] = Slot{tag, position};
  ++entered_;
}

// Makes room for so many entries in no more than half of the slots; false when there is not even one slot to spare. Places follow
// the high bits of the tags, so that the old table is read and the new one is written from front to back.
bool PointIndex::grow(int entries) {
  int shift = shift_;
  while (shift > 1 && (std::int64_t{1} << (32 - shift)) < 2 * std::int64_t{entries}) --shift;
  if (shift == shift_) return std::size_t(entries) < size();
  coFlatArray<Slot> old(std::size_t{1} << (32 - shift));
  if (old.size() == 0) return std::size_t(entries) < size();
  const Slot* const old_slots = slots_;
  const std::size_t old_size = size();
  old.swap(large_table_);
  slots_ = large_table_.begin();
  shift_ = shift;
  entered_ = 0;
  for (std::size_t k = 0; k < old_size; ++k) {
    if (old_slots[k].position != 0) enter(old_slots[k].tag, old_slots[k].position);
  }
  return true;
}
