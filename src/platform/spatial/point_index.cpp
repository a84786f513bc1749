#include "platform/spatial/point_index.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "platform/spatial/point_order.h"

namespace {

constexpr std::size_t smallest_table = std::size_t{1} << 8;
constexpr std::size_t largest_table = std::size_t{1} << 31;

// A table holds at most 7 entries in 10 slots: beyond that, runs of taken slots grow longer than a cache line.
bool too_full(std::size_t entries, std::size_t slots) { return entries * 10 > slots * 7; }

// Squares of differences below this vanish, so that such points coincide at any tolerance.
constexpr double underflow_reach = 1e-161;

constexpr int infinity_classes = 27;

bool is_finite(const giPoint3& p) { return (p.x - p.x) + (p.y - p.y) + (p.z - p.z) == 0.0; }

bool is_single_precision(const giPoint3& p) {
  const auto fits = [](double x) { return std::fabs(x) <= FLT_MAX && static_cast<double>(static_cast<float>(x)) == x; };
  return fits(p.x) && fits(p.y) && fits(p.z);
}

// Per coordinate 0 for finite, 1 and 2 for the infinities; -1 when one is not a number.
int infinity_class(const giPoint3& p) {
  int result = 0;
  for (double x : {p.x, p.y, p.z}) {
    if (std::isnan(x)) return -1;
    result = 3 * result + (std::isinf(x) ? (x > 0.0 ? 1 : 2) : 0);
  }
  return result;
}

// Points of the two classes have a distance, unless both are infinite in the same direction on some axis.
bool classes_meet(int a, int b) {
  for (int axis = 0; axis < 3; ++axis, a /= 3, b /= 3) {
    if (a % 3 != 0 && a % 3 == b % 3) return false;
  }
  return true;
}

}  // namespace

PointIndex::PointIndex(double tol, Winner winner)
    : tol_sq_(tol * tol), reach_(std::fabs(tol) * (1.0 + 1e-12) + underflow_reach), inverse_cell_(0.25 / reach_), winner_(winner) {
  resize(smallest_table);
  if (std::isinf(tol_sq_)) first_of_class_.assign(infinity_classes, -1);
}

PointIndex::~PointIndex() = default;

void PointIndex::reserve(std::int64_t n) {
  std::size_t wanted = smallest_table;
  while (wanted < largest_table && too_full(static_cast<std::size_t>(n), wanted)) wanted *= 2;
  if (wanted > slots()) resize(wanted);
  numbers_.reserve(static_cast<std::size_t>(n));
}

int PointIndex::find_position(const giPoint3& p, Probe own) {
  if (!first_of_class_.empty()) return find_within_infinite(p);
  if (!is_finite(p) || std::isnan(tol_sq_)) return -1;
  Search search;
  search.p = p;
  search_cell(own.hash, search);
  if (!search.exact) search_cells_around(own, search);
  return search.best;
}

// The entries of a cell lie behind its slot, among those of other cells: the distance alone tells whether one coincides.
template <class Entry>
void PointIndex::search_cell_in(const coFlatArray<Entry>& table, std::uint32_t hash, Search& search) {
  for (std::uint32_t at = hash & mask_; table[at].position != 0; at = (at + 1) & mask_) {
    const Entry& entry = table[at];
    const double dx = double{entry.x} - search.p.x;
    const double dy = double{entry.y} - search.p.y;
    const double dz = double{entry.z} - search.p.z;
    if (!(dx * dx + dy * dy + dz * dz <= tol_sq_)) continue;
    const int position = static_cast<int>(entry.position - 1);
    if (dx == 0.0 && dy == 0.0 && dz == 0.0) {
      search.best = position;
      search.exact = true;
      return;
    }
    consider(position, search);
  }
}

// Visits the other cells that a coinciding point can lie in.
void PointIndex::search_cells_around(Probe own, Search& search) {
  const double c[3] = {search.p.x, search.p.y, search.p.z};
  std::int64_t low[3];
  std::int64_t high[3];
  for (int k = 0; k < 3; ++k) {
    const double cell = c[k] * inverse_cell_;
    const bool coarse = cell > -9007199254740992.0 && cell < 9007199254740992.0;
    low[k] = key(coarse ? c[k] - reach_ : c[k]);
    high[k] = key(coarse ? c[k] + reach_ : c[k]);
    // At the edge of the range of cell numbers a neighbouring double is farther away than the tolerance.
    if (high[k] < low[k] || high[k] - low[k] > 8) low[k] = high[k] = key(c[k]);
  }
  if (low[0] == high[0] && low[1] == high[1] && low[2] == high[2]) return;
  for (std::int64_t kx = low[0]; kx <= high[0]; ++kx) {
    for (std::int64_t ky = low[1]; ky <= high[1]; ++ky) {
      for (std::int64_t kz = low[2]; kz <= high[2]; ++kz) {
        const std::uint32_t hash = cell_hash(kx, ky, kz);
        if (hash != own.hash) search_cell(hash, search);
      }
    }
  }
}

void PointIndex::consider(int position, Search& search) {
  if (search.best < 0) {
    search.best = position;
    return;
  }
  if (search.best == position) return;
  const bool better =
      winner_ == Winner::lowest_number ? number_of(position) < number_of(search.best) : tree_precedes(position, search.best);
  if (better) search.best = position;
}

bool PointIndex::tree_precedes(int a, int b) {
  if (order_ == nullptr) {
    order_ = std::make_unique<PointOrder>();
    for (double x : x_of_position_) order_->insert(x);
  }
  return order_->precedes(a, b);
}

void PointIndex::keep(const giPoint3& p, int number, Probe own) {
  if (!first_of_class_.empty()) return keep_within_infinite(p, number);
  if (!is_finite(p)) return;  // it will match nothing
  if (!wide_ && !is_single_precision(p) && !widen()) return;
  const std::size_t n = numbers_.size() + 1;
  if (too_full(n, slots()) && slots() < largest_table) resize(2 * slots());
  if (n >= slots()) return;  // only without memory for a larger table
  numbers_.push_back(number);
  if (winner_ == Winner::tree_order) x_of_position_.push_back(p.x);
  if (order_ != nullptr) order_->insert(p.x);
  const std::uint32_t position = static_cast<std::uint32_t>(n);
  wide_ ? insert(wide_table_, p, own.hash, position) : insert(narrow_table_, p, own.hash, position);
}

template <class Entry>
void PointIndex::insert(coFlatArray<Entry>& table, const giPoint3& p, std::uint32_t hash, std::uint32_t position) {
  using Number = decltype(Entry::x);
  std::uint32_t at = hash & mask_;
  while (table[at].position != 0) at = (at + 1) & mask_;
  table[at].x = static_cast<Number>(p.x);
  table[at].y = static_cast<Number>(p.y);
  table[at].z = static_cast<Number>(p.z);
  table[at].position = position;
}

// Moves all entries into a new table; false, and nothing changed, without memory.
template <class Entry, class Old>
bool PointIndex::refill(coFlatArray<Entry>& table, const coFlatArray<Old>& old, std::size_t slots) {
  coFlatArray<Entry> fresh(slots);
  if (fresh.size() == 0) return false;
  mask_ = static_cast<std::uint32_t>(slots - 1);
  for (std::size_t k = 0; k < old.size(); ++k) {
    if (old[k].position == 0) continue;
    const giPoint3 p(old[k].x, old[k].y, old[k].z);
    insert(fresh, p, probe(p).hash, old[k].position);
  }
  fresh.swap(table);
  return true;
}

bool PointIndex::resize(std::size_t slots) {
  return wide_ ? refill(wide_table_, wide_table_, slots) : refill(narrow_table_, narrow_table_, slots);
}

// Goes over to double precision entries.
bool PointIndex::widen() {
  if (!refill(wide_table_, narrow_table_, narrow_table_.size())) return false;
  coFlatArray<Narrow>().swap(narrow_table_);
  wide_ = true;
  return true;
}

// Of each class the point with the lowest number stands for all.
int PointIndex::find_within_infinite(const giPoint3& p) const {
  const int own = infinity_class(p);
  int found = -1;
  for (int other = 0; own >= 0 && other < infinity_classes; ++other) {
    const int position = first_of_class_[static_cast<std::size_t>(other)];
    if (position < 0 || !classes_meet(own, other)) continue;
    if (found < 0 || number_of(position) < number_of(found)) found = position;
  }
  return found;
}

void PointIndex::keep_within_infinite(const giPoint3& p, int number) {
  const int own = infinity_class(p);
  if (own < 0) return;
  int& first = first_of_class_[static_cast<std::size_t>(own)];
  if (first >= 0 && number_of(first) < number) return;
  first = static_cast<int>(numbers_.size());
  numbers_.push_back(number);
}
