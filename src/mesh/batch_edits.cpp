// Edits of many entities at once.

#include "mesh/tri_block.h"
#include "mesh/memory_guard.h"
#include "platform/containers/int_set.h"
#include "progress/output.h"
#include "progress/progress.h"

void trTriBlock::delete_elements(const intcoPageArr& list) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { delete_elements(list); });
  for (int k = 0; k < list.count(); ++k) {
    if (tr_interrupt()) break;
    delete_element(list[k]);
  }
  if (list.count() > 0) mark_changed();
}

int trTriBlock::delete_in_place(const intcoSet& elements) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return delete_in_place(elements); });
  intcoSet::coIterator it(elements);
  while (++it) {
    if (it() > 0 && it() < element_count()) delete_element(it());
  }
  return 1;
}

void trTriBlock::split_elements(const intcoPageArr& list) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { split_elements(list); });
  for (int k = 0; k < list.count(); ++k) {
    if (tr_interrupt()) break;
    split_element(list[k]);
  }
  if (list.count() > 0) mark_changed();
}

void trTriBlock::delete_collapsed_elements() {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { delete_collapsed_elements(); });
  for (int e = 1; e < element_count(); ++e) {
    if (tr_interrupt()) return;
    const trElement& t = element(e);
    if (!t.valid()) continue;
    if (t[0] == t[1] || t[1] == t[2] || t[2] == t[0]) delete_element(e);
  }
}

void trTriBlock::reverse() {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { reverse(); });
  const int n = element_count();
  for (int e = 0; e < n; ++e) {
    if (tr_interrupt()) return;
    if (e % 1000 == 0) {
      tr_report_progress(tr_brnknls("Reversing %d triangles:   %d"), n, e, static_cast<double>(e) / n * 100.0);
    }
    if (element(e).valid()) reverse_element(e);
  }
}

void trTriBlock::transform(const giXform3& x) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { transform(x); });
  for (int i = 1; i < node_count(); ++i) {
    if (tr_interrupt()) break;
    if (!node(i).invalid) set_node(i, x.apply(point(i)));
  }
  normals_built = 0;
  undup_tol = 0.0;
  box_.reset();
  ++geometry_revision_;
  changed = 0;
}
