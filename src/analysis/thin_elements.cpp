// Elements of bad shape or attitude: small, thin, overhanging.

#include "analysis/thin_sieve.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "progress/progress.h"

namespace {

giLength measured(ThinMeasure measure, const giPoint3& p0, const giPoint3& p1, const giPoint3& p2) {
  return measure == ThinMeasure::height ? trAspectUtils::triangle_height(p0, p1, p2) : trAspectUtils::triangle_aspect(p0, p1, p2);
}

// Keeps the least of the measures that have a finite value, and lets the sieve pass what is neither below it nor below the tolerance.
class LeastMeasure {
 public:
  LeastMeasure(ThinMeasure measure, double tol) : tol_sq_(tol >= 0.0 ? tol * tol : 0.0), sieve_(measure) {}

  const ThinSieve& sieve() const { return sieve_; }
  void enter(const giLength& value) {
    if (!value.is_set() || !(value.squared() < least_sq_)) return;
    least_ = value;
    least_sq_ = value.squared();
    sieve_.set_bound(std::max(tol_sq_, least_sq_));
  }
  double value() const { return least_.is_set() ? least_.value() : 0.0; }

 private:
  double tol_sq_;
  giLength least_;
  double least_sq_ = HUGE_VAL;
  ThinSieve sieve_;
};

}  // namespace

double trTriBlock::find_thin(double tol, int aspect, intcoPageArr& out) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0.0, [&] { return find_thin(tol, aspect, out); });
  out.clear(0);
  const ThinMeasure measure = aspect ? ThinMeasure::aspect : ThinMeasure::height;
  LeastMeasure least(measure, tol);
  const int n = element_count();
  for (int e = 0; e < n; ++e) {
    if (tr_interrupt()) break;
    tr_report_triangles(e, n, 0.0, 100.0);
    prefetch_corners(e + corners_ahead);
    const trElement& t = element(e);
    if (!t.valid()) continue;
    const giPoint3& p0 = point(t[0]);
    const giPoint3& p1 = point(t[1]);
    const giPoint3& p2 = point(t[2]);
    if (least.sieve().clears(p0, p1, p2)) continue;
    const giLength value = measured(measure, p0, p1, p2);
    if (value.is_below(tol)) out[out.count()] = e;
    least.enter(value);
  }
  if (out.count() > 0) self()->mark_changed();
  return least.value();
}

void trTriBlock::find_overhanging(intcoPageArr& out, const giUnitVec3& up) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { find_overhanging(out, up); });
  out.clear(0);
  if (tr_interrupt()) return;
  const int n = element_count();
  for (int e = 0; e < n; ++e) {
    tr_interrupt();  // lets the host breathe; its answer does not stop the search
    tr_report_triangles(e, n, 0.0, 100.0);
    prefetch_corners(e + corners_ahead);
    const trElement& t = element(e);
    if (!t.valid()) continue;
    const giPoint3& p0 = point(t[0]);
    if (up.dot((point(t[1]) - p0).cross(point(t[2]) - p0)) < 0.0) out[out.count()] = e;
  }
}
