#include "faults/failing_memory.h"

#include <malloc.h>
#include <sys/mman.h>

#include <cstdlib>
#include <new>

namespace {

bool counts = false;
long requests = 0;
long refused = 0;
FailingMemory::Mode mode = FailingMemory::Mode::once;
long live = 0;

}  // namespace

void FailingMemory::start(long k, Mode how) {
  requests = 0;
  refused = k;
  mode = how;
  counts = true;
}

long FailingMemory::stop() {
  counts = false;
  return requests;
}

long FailingMemory::live_bytes() { return live; }

bool FailingMemory::is_refused() {
  if (!counts) return false;
  ++requests;
  return refused > 0 && (mode == Mode::once ? requests == refused : requests >= refused);
}

void FailingMemory::add_live(long bytes) { live += bytes; }

void* FailingMemory::taken(void* block) {
  if (block != nullptr) live += static_cast<long>(malloc_usable_size(block));
  return block;
}

void FailingMemory::given_back(void* block) {
  if (block != nullptr) live -= static_cast<long>(malloc_usable_size(block));
}

// What the library calls by these names is led here by the linker.
extern "C" {
void* __real_malloc(std::size_t);
void* __real_calloc(std::size_t, std::size_t);
void* __real_realloc(void*, std::size_t);
void __real_free(void*);
void* __real_mmap(void*, std::size_t, int, int, int, off_t);
int __real_munmap(void*, std::size_t);

void* __wrap_malloc(std::size_t n) { return FailingMemory::is_refused() ? nullptr : FailingMemory::taken(__real_malloc(n)); }
void* __wrap_calloc(std::size_t n, std::size_t size) {
  return FailingMemory::is_refused() ? nullptr : FailingMemory::taken(__real_calloc(n, size));
}
void* __wrap_realloc(void* block, std::size_t n) {
  if (FailingMemory::is_refused()) return nullptr;
  FailingMemory::given_back(block);
  return FailingMemory::taken(__real_realloc(block, n));
}
void __wrap_free(void* block) {
  FailingMemory::given_back(block);
  __real_free(block);
}
void* __wrap_mmap(void* at, std::size_t n, int protection, int flags, int file, off_t offset) {
  if (FailingMemory::is_refused()) return MAP_FAILED;
  FailingMemory::add_live(static_cast<long>(n));
  return __real_mmap(at, n, protection, flags, file, offset);
}
int __wrap_munmap(void* at, std::size_t n) {
  FailingMemory::add_live(-static_cast<long>(n));
  return __real_munmap(at, n);
}
}

namespace {

void* allocate(std::size_t n, std::size_t alignment) noexcept {
  if (FailingMemory::is_refused()) return nullptr;
  if (n == 0) n = 1;
  void* block = nullptr;
  if (alignment <= alignof(std::max_align_t)) {
    block = __real_malloc(n);
  } else if (posix_memalign(&block, alignment, n) != 0) {
    block = nullptr;
  }
  return FailingMemory::taken(block);
}

void* allocate_or_throw(std::size_t n, std::size_t alignment) {
  void* const block = allocate(n, alignment);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void release(void* block) noexcept {
  FailingMemory::given_back(block);
  __real_free(block);
}

std::size_t bytes_of(std::align_val_t alignment) { return static_cast<std::size_t>(alignment); }

}  // namespace

void* operator new(std::size_t n) { return allocate_or_throw(n, 1); }
void* operator new[](std::size_t n) { return allocate_or_throw(n, 1); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return allocate(n, 1); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return allocate(n, 1); }
void* operator new(std::size_t n, std::align_val_t a) { return allocate_or_throw(n, bytes_of(a)); }
void* operator new[](std::size_t n, std::align_val_t a) { return allocate_or_throw(n, bytes_of(a)); }
void* operator new(std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept { return allocate(n, bytes_of(a)); }
void* operator new[](std::size_t n, std::align_val_t a, const std::nothrow_t&) noexcept { return allocate(n, bytes_of(a)); }
void operator delete(void* p) noexcept { release(p); }
void operator delete[](void* p) noexcept { release(p); }
void operator delete(void* p, std::size_t) noexcept { release(p); }
void operator delete[](void* p, std::size_t) noexcept { release(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { release(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { release(p); }
void operator delete(void* p, std::align_val_t) noexcept { release(p); }
void operator delete[](void* p, std::align_val_t) noexcept { release(p); }
void operator delete(void* p, std::size_t, std::align_val_t) noexcept { release(p); }
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept { release(p); }
void operator delete(void* p, std::align_val_t, const std::nothrow_t&) noexcept { release(p); }
void operator delete[](void* p, std::align_val_t, const std::nothrow_t&) noexcept { release(p); }
