#include "mesh/tri_block.h"
#include "mesh/memory_guard.h"
#include "progress/progress.h"

namespace {

constexpr int map_page_shift = 14;

}  // namespace

void trTriBlock::renumber() {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { renumber(); });
  intcoPageArr map(map_page_shift, 5, 10);  // old node number -> new; 0 for deleted nodes
  const int last_node = number_valid_nodes(map);
  if (last_node < 0) return;
  const int last_element = close_element_gaps(map);
  if (last_element < 0) return;
  if (!close_node_gaps(map)) return;
  nodes_->shrink(last_node + 1, 0);
  elements_->shrink(last_element + 1, 0);
  elements_referenced = 0;
  const double merge_tolerance = undup_tol;
  alter(0);
  undup_tol = merge_tolerance;
}

// Returns the last new number, -1 when interrupted.
int trTriBlock::number_valid_nodes(intcoPageArr& map) const {
  int last = 0;
  map.expand(node_count());
  for (int i = 1; i < node_count(); ++i) {
    if (tr_interrupt()) return -1;
    tr_report_nodes(i, node_count(), 0.0, 100.0);
    if (!node(i).invalid) map[i] = ++last;
  }
  return last;
}

int trTriBlock::close_element_gaps(const intcoPageArr& map) {
  int last = 0;
  for (int e = 1; e < element_count(); ++e) {
    if (tr_interrupt()) return -1;
    tr_report_triangles(e, element_count(), 0.0, 100.0);
    trElement& t = element(e);
    if (!t.valid()) continue;
    ++last;
    int moved[3];
    for (int k = 0; k < 3; ++k) moved[k] = has_node(t[k]) ? map[t[k]] : t[k];
    bool reported = false;
    if (moved[0] != t[0] || moved[1] != t[1] || moved[2] != t[2]) {
      report_element(e);
      reported = true;
      t.set(moved[0], moved[1], moved[2]);
    }
    if (e == last) continue;
    if (!reported) report_element(e);
    report_element(last);
    copy_colour(last, e);
    element(last).set(t[0], t[1], t[2]);
  }
  return last;
}

// An element that reads the right colour already is not written: writing beyond the colours that are set would take the
// default colour from the elements before it.
void trTriBlock::copy_colour(int to, int from) {
  if (get_element_colour(to) != get_element_colour(from)) colours_->set_colour(to, get_element_colour(from));
}

// Moves each node down to its new slot; 0 when interrupted.
int trTriBlock::close_node_gaps(const intcoPageArr& map) {
  for (int i = 1; i < node_count(); ++i) {
    if (tr_interrupt()) return 0;
    if (node(i).invalid || map[i] >= i) continue;
    report_node(i);
    report_node(map[i]);
    node(map[i]) = node(i);
    if (node_data_ != nullptr) node_data_->move(map[i], i);
  }
  ++geometry_revision_;
  return 1;
}
