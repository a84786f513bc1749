#include "mesh/clean_int_array.h"

#include "platform/containers/int_set.h"
#include "progress/progress.h"

int tr_clean_int_array(intcoPageArr& a) {
  intcoSet kept;  // the entries before position p, which are all different
  int removed = 0;
  for (int p = 0; p < a.count() && !tr_interrupt();) {
    if (!kept.member(a.at(p))) {
      kept.add(a.at(p++));
      continue;
    }
    ++removed;
    const int last = a.count() - 1;
    if (p < last) a.at(p) = a.at(last);
    a.shrink(last, 0);
  }
  return removed;
}
