#include "analysis/element_list.h"

#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "progress/message.h"
#include "progress/progress.h"

trElementList::~trElementList() = default;

int trElementList::detect_elements() {
  if (!coMemoryScope::is_open()) return tr_guarded(triblock, 0, [&] { return detect_elements(); });
  if (stale_) {
    find_elements();
    if (tr_interrupt()) return 0;
    stale_ = 0;
  }
  return elements_.count() > 0;
}

int trElementList::delete_elements() {
  if (!coMemoryScope::is_open()) return tr_guarded(triblock, 0, [&] { return delete_elements(); });
  const int found = detect_elements();
  if (tr_interrupt()) return 0;
  stale_ = 1;
  triblock->delete_elements(elements_);
  elements_.clear(1);
  stale_ = 0;
  cleaned = 1;
  return found;
}

void trElementList::karn_picture(std::FILE* file) {
  if (!coMemoryScope::is_open()) return tr_guarded(triblock, [&] { karn_picture(file); });
  detect_elements();
  triblock->picture_elements(file, elements_);
}

void trElementList::invalidate() {
  if (cleaned) {
    cleaned = 0;
  } else {
    stale_ = 1;
  }
}

void trElementList::print_count(const char* label) const {
  MessageLine line;
  line.text(label);
  if (stale_) {
    line.text("not computed");
  } else {
    line.number(elements_.count());
  }
}
