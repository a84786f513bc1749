#include "analysis/cut_search.h"

#include <algorithm>

#include "analysis/element_box.h"
#include "progress/progress.h"

// Compares element boxes, apart from those of elements that share a hub.
class CutSearch::Walk {
 public:
  Walk(CutSearch& search, const std::function<void(double)>& advance)
      : search_(search), field_(search.field_), advance_(advance) {}

  bool enter(int a) {
    advance_(static_cast<double>(a) / field_.blocks().count());
    if (search_.stops()) return false;
    settled_ = search_.block_is_settled(a);
    find_stretches(a);
    return true;
  }
  bool skip(int first, int last) const {
    if (search_.stopped_ || (settled_ && first == last && search_.block_is_settled(first))) return true;
    for (int s = 0; s < stretch_count_; ++s) {
      if (stretches_[s].holds(first * BoxBlock::width, last_in(last))) return true;
    }
    return false;
  }
  void visit(int i, int j) {
    if (has_hubs() && field_.shared_hub(field_.triangle(i), field_.triangle(j)) >= 0) return;
    search_.test(i, j);
  }

 private:
  bool has_hubs() const { return field_.hub_count() > 0; }
  int last_in(int block) const { return std::min((block + 1) * BoxBlock::width, field_.count()) - 1; }

  // What all elements of block a are done with: the groups of the hubs that all of them name, and each other's when
  // none has a normal.
  void find_stretches(int a) {
    stretch_count_ = 0;
    const int first = a * BoxBlock::width;
    if (first >= field_.count()) return;
    if (field_.without_normal().holds(first, last_in(a))) stretches_[stretch_count_++] = field_.without_normal();
    if (!has_hubs()) return;
    const int* nodes = field_.triangle(first).nodes;
    for (int k = 0; k < 3; ++k) {
      const int hub = field_.hub_at(nodes[k]);
      if (hub >= 0 && all_name(a, nodes[k])) stretches_[stretch_count_++] = field_.at_hub(hub);
    }
  }
  bool all_name(int a, int node) const {
    for (int i = a * BoxBlock::width; i <= last_in(a); ++i) {
      const int* nodes = field_.triangle(i).nodes;
      if (std::find(nodes, nodes + 3, node) == nodes + 3) return false;
    }
    return true;
  }

  CutSearch& search_;
  const CutField& field_;
  const std::function<void(double)>& advance_;
  bool settled_ = false;
  Stretch stretches_[4];
  int stretch_count_ = 0;
};

CutSearch::CutSearch(const CutField& field, double tol)
    : field_(field),
      tol_(tol),
      marked_(static_cast<std::size_t>(field.count())),
      open_(static_cast<std::size_t>(field.blocks().count())) {
  for (int i = 0; i < field.count(); ++i) ++open_[static_cast<std::size_t>(i / BoxBlock::width)];
}

void CutSearch::run(const std::function<void(double)>& advance) {
  if (field_.hub_count() > 0) {
    const std::vector<std::vector<int>> fans = field_.fans();
    for (int hub = 0; hub < field_.hub_count() && !stops(); ++hub) {
      FanSearch(field_, hub, fans[static_cast<std::size_t>(hub)], tol_).run(*this);
    }
  }
  Walk walk(*this, advance);
  walk_box_pairs(field_.blocks(), walk);
  if (!stops()) advance(1.0);
}

bool CutSearch::stops() {
  stopped_ = stopped_ || tr_interrupt();
  return stopped_;
}

void CutSearch::test(int i, int j) {
  const CutTriangle& a = field_.triangle(i);
  const CutTriangle& b = field_.triangle(j);
  if (!a.has_normal && !b.has_normal) return;
  const unsigned equal = equal_nodes(a, b);
  if (is_two_pairs(equal) || (is_settled(i) && is_settled(j))) return;
  // With three matches or more the last one, which decides what sides are looked at, depends on which triangle comes
  // first.
  const bool swapped = equal != 0 && !is_one_pair(equal) && field_.element(i) > field_.element(j);
  const TriangleCut cut(tol_);
  if (swapped ? cut.test(b, a, equal_nodes(b, a)) : cut.test(a, b, equal)) record(i, j);
}

void CutSearch::record(int i, int j) {
  const CutPair pair = std::minmax(field_.element(i), field_.element(j));
  const giBox3 box = element_box(field_.block(), field_.triangle(i));
  if (!box.crosses(element_box(field_.block(), field_.triangle(j)), tol_)) return;
  mark(i);
  mark(j);
  if (!keeps_pairs_) return;
  pairs_.push_back(pair);
  const auto limit =
      std::max<std::size_t>(least_kept_pairs, kept_pairs_each * static_cast<std::size_t>(field_.count()));
  if (pairs_.size() <= limit) return;
  keeps_pairs_ = false;
  std::vector<CutPair>().swap(pairs_);
}

void CutSearch::mark(int position) {
  char& marked = marked_[static_cast<std::size_t>(position)];
  if (marked) return;
  marked = 1;
  --open_[static_cast<std::size_t>(position / BoxBlock::width)];
}

std::vector<int> CutSearch::elements() const {
  std::vector<int> found;
  for (int i = 0; i < field_.count(); ++i) {
    if (marked_[static_cast<std::size_t>(i)]) found.push_back(field_.element(i));
  }
  std::sort(found.begin(), found.end());
  return found;
}
