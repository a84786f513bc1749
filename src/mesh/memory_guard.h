#pragma once

#include <new>

#include "platform/containers/memory_scope.h"

class trTriBlock;

/// What is left to do where memory ran out in an operation on a block: whatever derives from nodes and elements goes stale, and a line
/// says so. Needs no memory.
void tr_end_without_memory(const trTriBlock* block);

/// Runs an operation of a block (null for none) that may find no memory. It then ends as if the host had interrupted it: edits made so far stay and
/// are recorded, nothing is thrown, and the result is `failed`. An operation within another one ends the outer one too.
///
/// Public operations call themselves through it:
///     if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return swap_elements(tol); });
template <class Result, class Operation>
Result tr_guarded(const trTriBlock* block, Result failed, Operation operation) {
  try {
    const coMemoryScope scope;
    return operation();
  } catch (const std::bad_alloc&) {
  }
  tr_end_without_memory(block);
  return failed;
}

template <class Operation>
void tr_guarded(const trTriBlock* block, Operation operation) {
  tr_guarded(block, 0, [&] {
    operation();
    return 0;
  });
}
