// trTriBlock::find_intersecting: all pairs are found at once; grid boxes only set the order of the list and the steps
// of the progress.
#include <cstdint>

#include "analysis/cut_search.h"
#include "analysis/element_box.h"
#include "analysis/grid_cells.h"
#include "analysis/visit_order.h"
#include "mesh/clean_int_array.h"
#include "mesh/memory_guard.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

// Reports the boxes of the grid one after the other, in step with the search.
class BoxReport {
 public:
  BoxReport(const GridCells& cells, const trTriBlock& block) : total_(cells.count()) {
    if (tr_current_break_handler != nullptr) counts_ = cells.element_counts(block);
  }

  void advance(double share) {
    if (tr_current_break_handler == nullptr || counts_.empty()) return;
    const int reached = static_cast<int>(share * total_);
    while (visited_ < reached && !tr_interrupt()) {
      const int count = counts_[static_cast<std::size_t>(visited_++)];
      tr_report_progress(tr_brnknls("Box %d/%d (%d triangles)"), visited_, total_, count, 100.0 * visited_ / total_);
    }
  }

 private:
  int total_;
  int visited_ = 0;
  std::vector<int> counts_;
};

void append(intcoPageArr& out, int e) { out[out.count()] = e; }

void append(intcoPageArr& out, const std::vector<CutPair>& pairs) {
  for (const CutPair& pair : pairs) {
    append(out, pair.first);
    append(out, pair.second);
  }
}

}  // namespace

void trTriBlock::find_intersecting(intcoPageArr& out, int limit) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { find_intersecting(out, limit); });
  out.clear(0);
  const giBox3& whole = box();
  if (whole.is_empty()) {
    if (!tr_interrupt()) tr_clean_int_array(out);
    return;
  }
  const GridCells cells(trBoxGrid(whole, element_count(), limit / 2), intersection_tol);
  BoxReport report(cells, *this);
  const CutField field(*this, intersection_tol);
  CutSearch search(field, intersection_tol);
  search.run([&](double share) { report.advance(share); });
  std::vector<int> found;
  if (!search.keeps_pairs()) {
    found = search.elements();
  } else if (!tr_interrupt()) {
    found = VisitOrder(field, cells, limit, intersection_tol).elements_of(search.pairs());
  }
  if (search.keeps_pairs() && tr_interrupt()) {
    append(out, search.pairs());
    return;
  }
  for (const int e : found) append(out, e);
}
