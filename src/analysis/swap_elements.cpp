// Swapping the longest edge of thin elements.

#include <vector>

#include "analysis/thin_sieve.h"
#include "mesh/memory_guard.h"
#include "mesh/neighbour_search.h"
#include "progress/progress.h"

namespace {

// A thin element and the corner opposite its longest edge.
struct Candidate {
  int element;
  int apex;
};

// In ascending number; empty also when the host interrupts.
std::vector<Candidate> thin_candidates(const trTriBlock& block, double tol) {
  std::vector<Candidate> found;
  ThinSieve sieve(ThinMeasure::aspect);
  sieve.set_bound(tol >= 0.0 ? tol * tol : 0.0);
  const int n = block.element_count();
  for (int e = 0; e < n; ++e) {
    if (tr_interrupt()) return {};
    tr_report_triangles(e, n, 0.0, 100.0);
    block.prefetch_corners(e + trTriBlock::corners_ahead);
    const trElement& t = block.element(e);
    if (!t.valid()) continue;
    const giPoint3& p0 = block.point(t[0]);
    const giPoint3& p1 = block.point(t[1]);
    const giPoint3& p2 = block.point(t[2]);
    if (sieve.clears(p0, p1, p2)) continue;
    Candidate candidate{e, 0};
    const giLength aspect = trAspectUtils::triangle_aspect(p0, p1, p2, candidate.apex);
    if (!aspect.is_set() || aspect.is_below(tol)) found.push_back(candidate);
  }
  return found;
}

// The corner of t that follows `node`, in a side that arrives there from `from`.
int corner_after(const trElement& t, int from, int node) {
  for (int m = 0; m < 3; ++m) {
    if (t[m] == node && t[(m + 2) % 3] == from) return t[(m + 1) % 3];
  }
  return 0;
}

class EdgeSwapper {
 public:
  explicit EdgeSwapper(trTriBlock& block) : block_(block), neighbours_(block) {}

  // Swaps the candidate's longest edge when its neighbour there makes the other diagonal the better one; 1 when it did.
  int swap(const Candidate& candidate) {
    const int e = candidate.element;
    const trElement t = block_.element(e);
    if (!t.valid()) return 0;
    const int apex = t[candidate.apex];
    const int u = t[(candidate.apex + 1) % 3];
    const int v = t[(candidate.apex + 2) % 3];
    const int f = neighbours_.find(e, u, v);
    if (f == 0) return 0;
    const int opposite = corner_after(block_.element(f), v, u);
    if (!trAspectUtils::check_dela(block_.point(opposite), block_.point(u), block_.point(v), block_.point(apex))) return 0;
    generate(opposite, v, apex);
    generate(apex, u, opposite);
    block_.delete_element(f);
    block_.delete_element(e);
    return 1;
  }

 private:
  void generate(int a, int b, int c) {
    const int made = block_.generate(a, b, c);
    if (made >= 0) neighbours_.entered(made);
  }

  trTriBlock& block_;
  NeighbourSearch neighbours_;
};

}  // namespace

int trTriBlock::swap_elements(double tol) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return swap_elements(tol); });
  const std::vector<Candidate> candidates = thin_candidates(*this, tol);
  if (tr_interrupt()) return 0;
  reference_elements();
  if (tr_interrupt()) return 0;
  EdgeSwapper swapper(*this);
  int swaps = 0;
  for (const Candidate& candidate : candidates) {
    if (tr_interrupt()) return 0;
    swaps += swapper.swap(candidate);
  }
  return swaps > 0;
}
