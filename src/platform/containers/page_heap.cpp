#include "platform/containers/page_heap.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <vector>

#include "platform/containers/refused_memory.h"

#if defined(__unix__)
#include <sys/mman.h>
#endif

#if defined(__SANITIZE_ADDRESS__)
#define MENDEX_PAGES_APART 1  // every page its own allocation, so that the sanitizer sees its bounds
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MENDEX_PAGES_APART 1
#endif
#endif

namespace {

constexpr std::size_t page_alignment = 64;

// Below this size a slab would hold so many pages that the general heap is as good.
constexpr std::size_t smallest_slab_page = std::size_t{16} << 10;

bool from_slab(std::size_t bytes, int ordinal) {
#if defined(MENDEX_PAGES_APART)
  (void)bytes;
  (void)ordinal;
  return false;
#else
  return static_cast<std::size_t>(ordinal) * bytes >= coPageHeap::plain_bytes && bytes >= smallest_slab_page &&
         bytes <= coPageHeap::slab_bytes / 2;
#endif
}

struct Slab {
  std::size_t page_bytes = 0;
  int fresh = 0;           // pages never handed out start at this index
  int live = 0;            // pages in use
  std::vector<int> freed;  // indices of pages given back
  int page_total() const { return static_cast<int>(coPageHeap::slab_bytes / page_bytes); }
  bool full() const { return freed.empty() && fresh == page_total(); }
};

// Slabs by address; `open` names, for each page size, the slabs that still have room. Only page addresses depend on the order of
// the addresses here, never a result.
struct SlabTable {
  std::map<char*, Slab> slabs;
  std::map<std::size_t, std::vector<char*>> open;
};

SlabTable& table() {
  static SlabTable* instance = new SlabTable;  // never destroyed: a host's global objects may outlive any of ours
  return *instance;
}

// Makes room at once for all that giving pages back will need; false, and the slab is gone, when there is no memory for that.
bool enter_slab(char* base, std::size_t bytes, std::vector<char*>& open) {
  SlabTable& all = table();
  try {
    Slab& slab = all.slabs[base];
    slab.page_bytes = bytes;
    slab.freed.reserve(static_cast<std::size_t>(slab.page_total()));
    if (open.capacity() < all.slabs.size()) open.reserve(2 * all.slabs.size());
  } catch (const std::bad_alloc&) {
    all.slabs.erase(base);
    coPageHeap::release_slab(base);
    return false;
  }
  open.push_back(base);
  return true;
}

char* open_slab(std::size_t bytes) {
  SlabTable& all = table();
  std::vector<char*>& open = all.open[bytes];
  if (!open.empty()) return open.back();
  char* base = static_cast<char*>(coPageHeap::allocate_slab(true));
  if (base == nullptr) return nullptr;
  return enter_slab(base, bytes, open) ? base : nullptr;
}

void* take_from_slab(std::size_t bytes) {
  char* base = open_slab(bytes);
  if (base == nullptr) return nullptr;
  Slab& slab = table().slabs[base];
  int index = slab.fresh;
  if (slab.freed.empty()) {
    ++slab.fresh;
  } else {
    index = slab.freed.back();
    slab.freed.pop_back();
  }
  ++slab.live;
  if (slab.full()) table().open[bytes].pop_back();
  return base + static_cast<std::size_t>(index) * bytes;
}

void give_to_slab(char* page, std::size_t bytes) {
  SlabTable& all = table();
  auto found = all.slabs.upper_bound(page);
  --found;
  Slab& slab = found->second;
  std::vector<char*>& open = all.open[bytes];
  const bool was_full = slab.full();
  slab.freed.push_back(static_cast<int>(static_cast<std::size_t>(page - found->first) / bytes));
  if (--slab.live > 0) {
    if (was_full) open.push_back(found->first);
    return;
  }
  for (std::size_t k = 0; k < open.size(); ++k) {
    if (open[k] != found->first) continue;
    open.erase(open.begin() + static_cast<std::ptrdiff_t>(k));
    break;
  }
  coPageHeap::release_slab(found->first);
  all.slabs.erase(found);
}

}  // namespace

void* coPageHeap::allocate(std::size_t bytes, int ordinal) noexcept {
  try {
    if (from_slab(bytes, ordinal)) return take_from_slab(bytes);
    return ::operator new(bytes, std::align_val_t{page_alignment}, std::nothrow);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void coPageHeap::release(void* page, std::size_t bytes, int ordinal) noexcept {
  if (page == nullptr) return;
  if (!from_slab(bytes, ordinal)) {
    ::operator delete(page, std::align_val_t{page_alignment});
    return;
  }
  give_to_slab(static_cast<char*>(page), bytes);
}

namespace {

void* plain_zeroed(std::size_t bytes) {
  void* block = std::calloc(bytes, 1);
  if (block == nullptr) report_refused_memory();
  return block;
}

}  // namespace

#if defined(__unix__) && !defined(MENDEX_PAGES_APART)

namespace {

// Zeroed memory aligned to a slab, in whole slabs.
void* map_aligned(std::size_t bytes, bool large_pages) {
  void* raw = mmap(nullptr, bytes + coPageHeap::slab_bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) {
    report_refused_memory();
    return nullptr;
  }
  char* start = static_cast<char*>(raw);
  const std::size_t slab = coPageHeap::slab_bytes;
  const std::size_t before = (slab - reinterpret_cast<std::uintptr_t>(start) % slab) % slab;
  if (before > 0) munmap(start, before);
  munmap(start + before + bytes, slab - before);
#if defined(MADV_HUGEPAGE)
  if (large_pages) madvise(start + before, bytes, MADV_HUGEPAGE);
#else
  (void)large_pages;
#endif
  return start + before;
}

std::size_t whole_slabs(std::size_t bytes) {
  return (bytes + coPageHeap::slab_bytes - 1) / coPageHeap::slab_bytes * coPageHeap::slab_bytes;
}

}  // namespace

void* coPageHeap::allocate_slab(bool large_page) noexcept { return map_aligned(slab_bytes, large_page); }

void coPageHeap::release_slab(void* slab) noexcept {
  if (slab != nullptr) munmap(slab, slab_bytes);
}

void* coPageHeap::allocate_zeroed(std::size_t bytes) noexcept {
  return bytes < coPageHeap::plain_bytes ? plain_zeroed(bytes) : map_aligned(whole_slabs(bytes), true);
}

void coPageHeap::release_zeroed(void* block, std::size_t bytes) noexcept {
  if (bytes < coPageHeap::plain_bytes) {
    std::free(block);
  } else if (block != nullptr) {
    munmap(block, whole_slabs(bytes));
  }
}

#else

void* coPageHeap::allocate_slab(bool) noexcept { return plain_zeroed(slab_bytes); }
void coPageHeap::release_slab(void* slab) noexcept { std::free(slab); }
void* coPageHeap::allocate_zeroed(std::size_t bytes) noexcept { return plain_zeroed(bytes); }
void coPageHeap::release_zeroed(void* block, std::size_t) noexcept { std::free(block); }

#endif
