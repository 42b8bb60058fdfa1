#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/portability.h"

namespace qz {

// A number that nobody outside the process can foresee: it comes from where the object and the
// library lie in memory. No output depends on it.
inline uint64_t secretOf(const void* object) {
  static constexpr char kLibrary = 0;
  const auto bits = [](const void* address) {
    return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(address));
  };
  return foldedProduct(bits(object) ^ 0x9e3779b97f4a7c15, bits(&kLibrary) ^ 0xbf58476d1ce4e5b9);
}

// Finds the number that was filed under a key, as a search from the first to the last would, at a
// cost that does not grow with their count: a hash table with linear probing.
//
// Who supplies what keys are made of can choose keys, but not where a search for them starts: that
// depends on a secret.
class HashIndex {
 public:
  using Number = uint32_t;

  HashIndex() : secret_(secretOf(this)) {}

  std::optional<Number> find(uint64_t key) const {
    return find(key, [](Number) { return true; });
  }

  // For keys that do not tell everything: the number of that key that `matches`, which at most one
  // does.
  template <class Matches>
  std::optional<Number> find(uint64_t key, Matches matches) const {
    if (slots_.empty()) return std::nullopt;
    for (size_t i = start(key);; ++i) {
      const Slot& slot = slots_[i & mask()];
      if (slot.numberPlusOne == 0) return std::nullopt;
      if (slot.key == key && matches(slot.numberPlusOne - 1)) return slot.numberPlusOne - 1;
    }
  }

  // Makes room for one more number; insert() cannot fail then.
  void makeRoom() {
    if (4 * (count_ + 1) <= 3 * slots_.size()) return;
    std::vector<Slot> former(slots_.empty() ? 16 : 2 * slots_.size());
    slots_.swap(former);
    for (const Slot& slot : former)
      if (slot.numberPlusOne != 0) freeSlot(slot.key) = slot;
  }

  void insert(uint64_t key, Number number) noexcept {
    assert(4 * (count_ + 1) <= 3 * slots_.size());
    freeSlot(key) = {key, number + 1};
    ++count_;
  }

 private:
  struct Slot {
    uint64_t key = 0;
    uint32_t numberPlusOne = 0;  // 0 when the slot is free
  };
  size_t mask() const { return slots_.size() - 1; }
  size_t start(uint64_t key) const {
    return static_cast<size_t>(foldedProduct(key ^ secret_, secret_ | 1));
  }
  // Where a key's search ends without having found it.
  Slot& freeSlot(uint64_t key) {
    size_t i = start(key);
    while (slots_[i & mask()].numberPlusOne != 0) ++i;
    return slots_[i & mask()];
  }

  uint64_t secret_;
  std::vector<Slot> slots_;
  size_t count_ = 0;
};

}  // namespace qz
