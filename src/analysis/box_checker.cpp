#include "analysis/box_checker.h"

#include "analysis/octants.h"
#include "analysis/triangle_cut.h"
#include "progress/progress.h"

trBoxChecker::trBoxChecker(const trTriBlock* block, int limit, double tol)
    : cache_(new trBoxCache(block)), parent_(nullptr), limit_(limit), depth_(0), tol_(tol) {}

trBoxChecker::trBoxChecker(const trBoxChecker* parent, int octant)
    : cache_(parent->cache_), parent_(parent), limit_(parent->limit_), depth_(parent->depth_ + 1), tol_(parent->tol_) {
  reset(Octants(parent->box_).box(octant));
}

trBoxChecker::~trBoxChecker() {
  if (parent_ == nullptr) delete cache_;
}

void trBoxChecker::reset(const giBox3& box) {
  box_ = box;
  elements_.clear(0);
  for (int i = 0; i < total_num_elements() && !tr_interrupt(); ++i) {
    const int e = ith_element(i);
    if (cache_->element_box(e).crosses(box_, tol_)) elements_[elements_.count()] = e;
  }
}

int trBoxChecker::check_intersecting(intcoPageArr& out) {
  if (!Octants::may_split(box_, num_box_elements(), limit_, depth_, tol_) || !split_pays()) return test_pairs(out);
  int found = 0;
  for (int octant = 1; octant <= Octants::count && !tr_interrupt(); ++octant) {
    found += trBoxChecker(this, octant).check_intersecting(out);
  }
  return found;
}

bool trBoxChecker::split_pays() const {
  const Octants octants(box_);
  int sizes[Octants::count] = {};
  for (int i = 0; i < num_box_elements(); ++i) {
    const giBox3& element = cache_->element_box(elements_.at(i));
    for (int o = 0; o < Octants::count; ++o) sizes[o] += element.crosses(octants.box(o + 1), tol_);
  }
  return Octants::pays(sizes, num_box_elements());
}

int trBoxChecker::test_pairs(intcoPageArr& out) const {
  int found = 0;
  for (int i = 0; i + 1 < num_box_elements(); ++i) {
    const int a = elements_.at(i);
    const giBox3& box_a = cache_->element_box(a);
    for (int j = i + 1; j < num_box_elements(); ++j) {
      if (tr_interrupt()) return found;
      const int b = elements_.at(j);
      if (!box_a.crosses(cache_->element_box(b), tol_)) continue;
      if (!tr_elements_intersect(cache_->triblock(), a, b, tol_)) continue;
      ++found;
      out[out.count()] = a;
      out[out.count()] = b;
    }
  }
  return found;
}

int trBoxChecker::tr_elements_intersect(const trTriBlock* block, int a, int b, double tol) {
  CutTriangle triangles[2];
  const int numbers[2] = {a, b};
  for (int k = 0; k < 2; ++k) {
    const trElement& t = block->element(numbers[k]);
    triangles[k].set(t, block->point(t[0]), block->point(t[1]), block->point(t[2]), tol);
  }
  const unsigned equal = equal_nodes(triangles[0], triangles[1]);
  return !is_two_pairs(equal) && TriangleCut(tol).test(triangles[0], triangles[1], equal);
}

int trBoxChecker::tr_span_x_tri(const giPoint3& p, const giPoint3& q, double dp, double dq, giPoint3* const tri,
                                const giVector3& n, double tol) {
  return segment_meets(p, q, dp, dq, tri, n, tol);
}

int trBoxChecker::nodes_shared(const trElement& a, const trElement& b, int& common) {
  int shared = 0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      if (a[i] != b[j]) continue;
      ++shared;
      common = a[i];
    }
  }
  return shared;
}
