// Content keys, and the index that finds by them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "markup/markup_text.h"
#include "markup/portability.h"

namespace qz {

// FNV-1a, 64 bits, over UTF-16 code units taken as bytes, the low byte first.
class ContentHash {
 public:
  // For a unit below 256 the high byte's step only multiplies: one multiplication does both.
  void add(std::string_view characters) {
    for (const char character : characters)
      value_ = (value_ ^ static_cast<unsigned char>(character)) * (kPrime * kPrime);
  }
  void add(UnitView units) {
    for (const Unit unit : units) {
      value_ = (value_ ^ (unit & 0xFFu)) * kPrime;
      value_ = (value_ ^ (unit >> 8 & 0xFFu)) * kPrime;
    }
  }
  void add(const MarkupText& text) {
    text.forEachRun([this](std::string_view run) { add(run); }, [this](UnitView run) { add(run); });
  }
  uint64_t value() const { return value_; }

 private:
  static constexpr uint64_t kPrime = 0x100000001b3;
  uint64_t value_ = 0xcbf29ce484222325;
};

// Finds the number that was filed under a key, as a search from the first to the last would, at a
// cost that does not grow with their count.
class KeyIndex {
 public:
  using Number = uint32_t;

  std::optional<Number> find(uint64_t key) const {
    return find(key, [](Number) { return true; });
  }

  // For keys that do not tell everything: the first number of that key that `matches`.
  template <class Matches>
  std::optional<Number> find(uint64_t key, Matches matches) const {
    if (slots_.empty()) return std::nullopt;
    for (size_t i = start(key);; ++i) {
      const Slot& slot = slots_[i & mask()];
      if (slot.state == 0) return std::nullopt;
      if (slot.key == key && matches(slot.state - 1)) return slot.state - 1;
    }
  }

  // Makes room for one more number; insert() cannot fail then.
  void reserveOne() {
    if (4 * (count_ + 1) <= 3 * slots_.size()) return;
    KeyIndex larger;
    larger.slots_.resize(slots_.empty() ? 16 : 2 * slots_.size());
    for (const Slot& slot : slots_)
      if (slot.state != 0) larger.insert(slot.key, slot.state - 1);
    slots_.swap(larger.slots_);
  }

  void insert(uint64_t key, Number number) noexcept {
    size_t i = start(key);
    while (slots_[i & mask()].state != 0) ++i;
    slots_[i & mask()] = {key, number + 1};
    ++count_;
  }

 private:
  struct Slot {
    uint64_t key = 0;
    uint32_t state = 0;  // 0 when free, else the number plus one
  };
  size_t mask() const { return slots_.size() - 1; }
  // Keys may differ in few bits: the multiplication spreads them over the upper half.
  size_t start(uint64_t key) const { return (key * 0x9e3779b97f4a7c15) >> 32; }

  std::vector<Slot> slots_;
  size_t count_ = 0;
};

}  // namespace qz
