#include "platform/containers/memory_scope.h"

#include <new>

int coMemoryScope::depth_ = 0;

void co_entry_lost() {
  if (coMemoryScope::is_open()) throw std::bad_alloc();
}
