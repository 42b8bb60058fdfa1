#pragma once

#include <cstdint>
#include <string_view>

#include "base/utf16.h"
#include "markup/markup_text.h"

namespace qz {

// FNV-1a, 64 bits, over UTF-16 code units taken as bytes, the low byte first.
class ContentHash {
 public:
  void add(std::string_view characters);
  void add(Utf16View units) {
    for (const CodeUnit unit : units) {
      if (unit < 256) {
        addLow(unit);
      } else {
        value_ = (value_ ^ (unit & 0xFFu)) * kPrime;
        value_ = (value_ ^ (unit >> 8 & 0xFFu)) * kPrime;
      }
    }
  }
  void add(const MarkupText& text) {
    text.forEachRun([this](std::string_view run) { add(run); },
                    [this](Utf16View run) { add(run); });
  }
  uint64_t value() const { return value_; }

 private:
  static constexpr uint64_t kPrime = 0x100000001b3;
  static constexpr uint64_t kSquare = kPrime * kPrime;

  // For a unit below 256 the high byte's step only multiplies: one multiplication does both.
  void addLow(uint64_t unit) { value_ = (value_ ^ unit) * kSquare; }

  uint64_t value_ = 0xcbf29ce484222325;
};

}  // namespace qz
