// Two ways to look at memory: units that come from the system and go back to it, past the heap's
// allocator, and how much heap C++ code holds at its peak.
#pragma once

#include <sys/mman.h>

#include <cstring>
#include <new>

namespace bench {

class MappedUnits {
 public:
  explicit MappedUnits(size_t units) : bytes_(units * sizeof(char16_t)) {
    void* const memory =
        mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    units_ = static_cast<char16_t*>(memory);
  }
  MappedUnits(const MappedUnits&) = delete;
  MappedUnits& operator=(const MappedUnits&) = delete;
  ~MappedUnits() { munmap(units_, bytes_); }

  void touch() { std::memset(units_, 0xFF, bytes_); }
  char16_t* data() { return units_; }

 private:
  size_t bytes_;
  char16_t* units_;
};

// Counts while it lives; one at a time. The operators new and delete of this program replace those
// of the shared objects too; main() checks that they do.
class HeapPeak {
 public:
  HeapPeak();
  ~HeapPeak();
  size_t bytes() const;
};

}  // namespace bench
