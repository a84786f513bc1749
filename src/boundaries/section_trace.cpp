// How the segments of a section are chained into polylines.

#include <algorithm>
#include <functional>
#include <queue>
#include <utility>
#include <vector>

#include "boundaries/section.h"

namespace {

constexpr int no_edge = -1;
constexpr int no_out_edge = -2;

// A candidate for the next polyline: the balance of a point when it was entered, and the lowest segment that started
// there.
using Start = std::pair<int, int>;

// The candidates, least first. Those that are there from the start are sorted once, which goes through memory in order as a heap would
// not; only those that are entered later make a heap.
class StartQueue {
 public:
  explicit StartQueue(std::vector<Start> first) : first_(std::move(first)) { std::sort(first_.begin(), first_.end()); }

  bool empty() const { return next_ == first_.size() && later_.empty(); }
  void enter(const Start& start) { later_.push(start); }
  Start take() {
    if (later_.empty() || (next_ < first_.size() && first_[next_] <= later_.top())) return first_[next_++];
    const Start start = later_.top();
    later_.pop();
    return start;
  }

 private:
  std::vector<Start> first_;
  std::size_t next_ = 0;
  std::priority_queue<Start, std::vector<Start>, std::greater<Start>> later_;
};

constexpr int point_page_shift = 12;
constexpr int shortest_page_shift = 2;
constexpr int longest_page_shift = 10;

// An array with pages that fit: a mesh of loose triangles is cut into very many chains of two points.
trSectionBoundary* boundary_of(const std::vector<int>& chain) {
  int shift = shortest_page_shift;
  while (shift < longest_page_shift && (std::size_t{1} << shift) < chain.size()) ++shift;
  auto* boundary = new trSectionBoundary(shift, 1, 10);
  boundary->copyin(chain.data(), static_cast<int>(chain.size()), 0, 0);
  return boundary;
}

}  // namespace

void trSection::cancel_edge(int edge) { edge_start.at(edge) = edge_end.at(edge) = -1; }

void trSection::cancel_edge(int edge, intcoPageArr& balance) {
  ++balance[edge_start.at(edge)];
  --balance[edge_end.at(edge)];
  cancel_edge(edge);
}

void trSection::index_starts() {
  first_from_.clear(0);
  next_from_.clear(0);
  for (int p = 0; p < points.count(); ++p) first_from_[p] = no_edge;
  next_from_.expand(edge_start.count());
  for (int e = edge_start.count() - 1; e >= 0; --e) {
    if (edge_cancelled(e)) continue;
    next_from_[e] = first_from_[edge_start.at(e)];
    first_from_[edge_start.at(e)] = e;
  }
}

int trSection::lowest_edge_from(int point) {
  if (first_from_.count() != points.count() || next_from_.count() != edge_start.count()) index_starts();
  int& first = first_from_.at(point);
  while (first != no_edge && edge_cancelled(first)) first = next_from_.at(first);
  return first;
}

int trSection::next_edge(int point, const intcoPageArr& out_edge) {
  const int named = out_edge[point];
  if (named == no_out_edge) return no_edge;
  return edge_cancelled(named) ? lowest_edge_from(point) : named;
}

// Every polyline begins with the live segment whose start has the least balance, the lowest of several. Points where
// chains begin have a negative balance. The balance of a point changes only where a polyline passed: such points are
// entered again, and entries that no longer hold are passed over.
void trSection::trace_boundaries() {
  intcoPageArr out_edge(point_page_shift, 5, 10);
  intcoPageArr balance(point_page_shift, 5, 10);
  for (int p = 0; p < points.count(); ++p) {
    out_edge[p] = no_out_edge;
    balance[p] = 0;
  }
  for (int e = 0; e < edge_start.count(); ++e) {
    if (edge_cancelled(e)) continue;
    out_edge.at(edge_start.at(e)) = e;
    --balance.at(edge_start.at(e));
    ++balance.at(edge_end.at(e));
  }
  index_starts();
  std::vector<Start> first;
  for (int p = 0; p < points.count(); ++p) {
    const int edge = lowest_edge_from(p);
    if (edge != no_edge) first.emplace_back(balance.at(p), edge);
  }
  StartQueue queue(std::move(first));
  while (!queue.empty()) {
    const Start start = queue.take();
    if (edge_cancelled(start.second) || balance.at(edge_start.at(start.second)) != start.first) continue;
    trace_boundary(start.second, out_edge, balance);
    const trSectionBoundary& passed = *boundaries[boundaries.count() - 1];
    for (int i = 0; i < passed.count(); ++i) {
      const int edge = lowest_edge_from(passed.at(i));
      if (edge != no_edge) queue.enter({balance.at(passed.at(i)), edge});
    }
  }
}

void trSection::trace_boundary(int edge, const intcoPageArr& out_edge, intcoPageArr& balance) {
  std::vector<int> chain;
  const int first = edge_start.at(edge);
  int end = first;
  for (int e = edge; e != no_edge; e = end == first ? no_edge : next_edge(end, out_edge)) {
    chain.push_back(edge_start.at(e));
    end = edge_end.at(e);
    cancel_edge(e, balance);
  }
  chain.push_back(end);
  trSectionBoundarycoDynArrPrgcoPrg boundary(boundary_of(chain));
  boundaries.append(boundary);
}
