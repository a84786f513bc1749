#include "mesh/memory_guard.h"

#include "mesh/tri_block.h"
#include "progress/message.h"

void tr_end_without_memory(const trTriBlock* of) {
  if (trTriBlock* const block = const_cast<trTriBlock*>(of)) {
    block->elements_referenced = 0;
    block->normals_built = 0;
    block->alter(1);
  }
  print_message(" Error: there is not enough memory");
}
