#include "memory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>

namespace {

bool counting = false;
size_t held = 0;
size_t peak = 0;

void* counted(void* block) {
  if (block == nullptr) throw std::bad_alloc();
  if (counting) peak = std::max(peak, held += malloc_usable_size(block));
  return block;
}

void release(void* block) noexcept {
  if (counting) held -= malloc_usable_size(block);
  std::free(block);
}

}  // namespace

// The other forms of new and delete end up in these.
void* operator new(size_t size) { return counted(std::malloc(size)); }
void* operator new(size_t size, std::align_val_t alignment) {
  const auto unit = static_cast<size_t>(alignment);
  return counted(std::aligned_alloc(unit, (size + unit - 1) / unit * unit));
}
void operator delete(void* block) noexcept { release(block); }
void operator delete(void* block, size_t) noexcept { release(block); }
void operator delete(void* block, std::align_val_t) noexcept { release(block); }
void operator delete(void* block, size_t, std::align_val_t) noexcept { release(block); }

namespace bench {

HeapPeak::HeapPeak() {
  held = peak = 0;
  counting = true;
}
HeapPeak::~HeapPeak() { counting = false; }
size_t HeapPeak::bytes() const { return peak; }

}  // namespace bench
