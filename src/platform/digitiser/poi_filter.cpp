#include "platform/digitiser/poi_filter.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "platform/spatial/point_index.h"

namespace {

// Slots are reserved for no more points than this, whatever the caller expects; the index grows on its own.
constexpr int most_reserved = 1 << 16;

bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

}  // namespace

ccPoiFilter::ccPoiFilter(coFeaturePool&, int n) : expected_(std::clamp(n, 0, most_reserved)), kept_(10, 5, 10) {}

ccPoiFilter::~ccPoiFilter() = default;

int ccPoiFilter::add_point(const giPoint3& p, int i, double tol) {
  if (index_ == nullptr || !same(tol, tol_)) rebuild(tol);
  if (index_ == nullptr) return i;
  const int found = index_->find_or_add_position(p, i, index_->probe(p));
  if (found >= 0) return -index_->number(found);
  kept_[kept_.count()] = Kept{p, i};
  return i;
}

void ccPoiFilter::rebuild(double tol) {
  index_.reset(new (std::nothrow) PointIndex(tol, PointIndex::Winner::lowest_number));
  tol_ = tol;
  if (index_ == nullptr) return;
  index_->reserve(expected_);
  coPageArrcoIterator<Kept> it(kept_);
  while (++it) index_->keep(it().point, it().number);
}
