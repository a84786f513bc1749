#pragma once

#include <new>

/// To be called where the system refused memory that was asked for by other means than `new`: a new-handler that the host installed
/// hears of it as it hears of a failed `new`. Nothing happens without one. The caller then goes on without the memory.
inline void report_refused_memory() noexcept {
  const std::new_handler handler = std::get_new_handler();
  if (handler == nullptr) return;
  try {
    handler();
  } catch (const std::bad_alloc&) {  // the handler has no memory to offer
  }
}
