#include "analysis/visit_order.h"

#include <algorithm>
#include <cstdint>

#include "analysis/element_box.h"
#include "analysis/octants.h"
#include "progress/progress.h"

namespace {

// The cell behind `place` in a range, in the order of the search; false at the last one.
bool advance(const CellRange& range, int place[3]) {
  for (int k = 2; k >= 0; --k) {
    if (++place[k] <= range.last[k]) return true;
    place[k] = range.first[k];
  }
  return false;
}

}  // namespace

std::vector<int> VisitOrder::elements_of(std::vector<CutPair> pairs) {
  pairs_ = std::move(pairs);
  std::sort(pairs_.begin(), pairs_.end());
  if (pairs_.empty()) return {};
  number_elements();
  if (tr_interrupt()) return {};
  count_in_cells();
  if (cell_counts_.empty()) return {};
  read_front();
  if (tr_interrupt()) return {};
  find_last_places();
  return tr_interrupt() ? std::vector<int>() : cleaned();
}

// The boxes come from the triangles of the search, which lie side by side.
void VisitOrder::count_in_cells() {
  const std::vector<int>& left_out = field_.left_out();
  cell_counts_ = cells_.box_counts(field_.count() + static_cast<int>(left_out.size()), [&](int k) {
    return k < field_.count() ? element_box(field_.block(), field_.triangle(k))
                              : element_box(field_.block(), left_out[static_cast<std::size_t>(k - field_.count())]);
  });
}

void VisitOrder::number_elements() {
  for (const CutPair& pair : pairs_) {
    elements_.push_back(pair.first);
    elements_.push_back(pair.second);
  }
  std::sort(elements_.begin(), elements_.end());
  elements_.erase(std::unique(elements_.begin(), elements_.end()), elements_.end());
  index_.resize(static_cast<std::size_t>(field_.block().element_count()));
  for (std::size_t k = 0; k < elements_.size(); ++k) {
    if (k + trTriBlock::corners_ahead < elements_.size()) field_.block().prefetch_corners(elements_[k + trTriBlock::corners_ahead]);
    index_[static_cast<std::size_t>(elements_[k])] = static_cast<int>(k);
    ranges_.push_back(cells_.range(element_box(field_.block(), elements_[k])));
  }
}

CellRange VisitOrder::range(const CutPair& pair) const {
  return ranges_[static_cast<std::size_t>(index(pair.first))].common(
      ranges_[static_cast<std::size_t>(index(pair.second))]);
}

// Every pair waits at the next cell that finds it, in a linked list.
void VisitOrder::read_front() {
  struct Waiting {
    int place[3];
    int next;
  };
  std::vector<Waiting> waiting(pairs_.size());
  std::vector<int> heads(static_cast<std::size_t>(cells_.count()), -1);
  const auto wait = [&](int p) {
    int& head = heads[static_cast<std::size_t>(cells_.number(waiting[static_cast<std::size_t>(p)].place))];
    waiting[static_cast<std::size_t>(p)].next = std::exchange(head, p);
  };
  for (std::size_t p = 0; p < pairs_.size(); ++p) {
    std::copy_n(range(pairs_[p]).first, 3, waiting[p].place);
    wait(static_cast<int>(p));
  }
  const auto append = [&](int p) {
    front_.push_back(pairs_[static_cast<std::size_t>(p)].first);
    front_.push_back(pairs_[static_cast<std::size_t>(p)].second);
    return front_.size() < elements_.size();
  };
  std::vector<int> here;
  for (int cell = 0; cell < cells_.count() && front_.size() < elements_.size() && !tr_interrupt(); ++cell) {
    here.clear();
    for (int p = heads[static_cast<std::size_t>(cell)]; p >= 0; p = waiting[static_cast<std::size_t>(p)].next) {
      here.push_back(p);
    }
    std::sort(here.begin(), here.end());
    visit_cell(cell, here, Report::every_time, append);
    for (const int p : here) {
      const auto at = static_cast<std::size_t>(p);
      if (advance(range(pairs_[at]), waiting[at].place)) wait(p);
    }
  }
}

// Of the pairs of an element only those matter whose last cell is the last of all of them.
void VisitOrder::find_last_places() {
  std::vector<int> pair_cell;
  std::vector<int> last_cell(elements_.size(), -1);
  for (const CutPair& pair : pairs_) {
    pair_cell.push_back(cells_.number(range(pair).last));
    for (const int e : {pair.first, pair.second}) {
      int& last = last_cell[static_cast<std::size_t>(index(e))];
      last = std::max(last, pair_cell.back());
    }
  }
  const auto ends_at = [&](int e, int cell) { return last_cell[static_cast<std::size_t>(index(e))] == cell; };
  std::vector<std::pair<int, int>> visits;  // cell and pair
  for (std::size_t p = 0; p < pairs_.size(); ++p) {
    if (ends_at(pairs_[p].first, pair_cell[p]) || ends_at(pairs_[p].second, pair_cell[p])) {
      visits.emplace_back(pair_cell[p], static_cast<int>(p));
    }
  }
  std::sort(visits.begin(), visits.end());
  std::vector<std::int64_t> places(elements_.size());
  std::int64_t place = 0;
  std::vector<int> here;
  for (std::size_t k = 0; k < visits.size(); ++k) {
    here.push_back(visits[k].second);
    if (k + 1 < visits.size() && visits[k + 1].first == visits[k].first) continue;
    if (tr_interrupt()) return;
    visit_cell(visits[k].first, here, Report::last_time, [&](int p) {
      for (const int e : {pairs_[static_cast<std::size_t>(p)].first, pairs_[static_cast<std::size_t>(p)].second}) {
        ++place;
        if (ends_at(e, visits[k].first)) places[static_cast<std::size_t>(index(e))] = place;
      }
      return true;
    });
    here.clear();
  }
  by_last_place_ = elements_;
  std::sort(by_last_place_.begin(), by_last_place_.end(), [&](int a, int b) {
    return places[static_cast<std::size_t>(index(a))] > places[static_cast<std::size_t>(index(b))];
  });
}

void VisitOrder::visit_cell(int cell, const std::vector<int>& pairs, Report report,
                            const std::function<bool(int)>& found) const {
  if (pairs.empty()) return;
  const giBox3 box = cells_.box(cell);
  if (!Octants::may_split(box, cell_counts_[static_cast<std::size_t>(cell)], limit_, 0, tol_)) {
    for (const int p : pairs) {
      if (!found(p)) return;
    }
    return;
  }
  const std::vector<CutField::Member> members = field_.members_crossing(box);
  const auto local = [&](int e) {
    const auto lies_before = [](const CutField::Member& member, int number) { return member.element < number; };
    return static_cast<int>(std::lower_bound(members.begin(), members.end(), e, lies_before) - members.begin());
  };
  std::vector<giBox3> boxes;
  boxes.reserve(members.size());
  for (const CutField::Member& member : members) boxes.push_back(element_box(field_.block(), field_.triangle(member.position)));
  std::vector<OctantReplay::Pair> local_pairs;
  for (const int p : pairs) {
    const CutPair& pair = pairs_[static_cast<std::size_t>(p)];
    local_pairs.push_back({local(pair.first), local(pair.second), p});
  }
  OctantReplay(std::move(boxes), limit_, tol_).run(box, local_pairs, report, found);
}

// What tr_clean_int_array makes of the list: an entry met again is replaced by the last one of the list that was not
// met.
std::vector<int> VisitOrder::cleaned() const {
  std::vector<char> kept(elements_.size());
  std::vector<int> list;
  const auto keep = [&](int e) {
    char& is_kept = kept[static_cast<std::size_t>(index(e))];
    if (is_kept) return false;
    is_kept = 1;
    list.push_back(e);
    return true;
  };
  auto last = by_last_place_.begin();
  for (auto entry = front_.begin(); list.size() < elements_.size(); ++entry) {
    if (keep(*entry)) continue;
    while (!keep(*last)) ++last;
  }
  return list;
}
