#pragma once

#include <cstdint>
#include <string_view>

#include "base/utf16.h"
#include "markup/markup_text.h"

namespace qz {

// FNV-1a, 64 bits, over UTF-16 code units taken as bytes, the low byte first.
class ContentHash {
 public:
  // For a unit below 256 the high byte's step only multiplies: one multiplication does both.
  //
  // The exclusive or adds a number that the hash's low byte alone decides. So the low bytes run
  // ahead, in steps cheaper than a 64-bit product, and four characters' numbers are multiplied
  // independently of each other: large pictures take a tenth less.
  void add(std::string_view characters) {
    constexpr uint64_t kFactors[] = {kSquare * kSquare * kSquare * kSquare,
                                     kSquare * kSquare * kSquare, kSquare * kSquare, kSquare};
    uint64_t low = value_;  // right in its low byte
    size_t i = 0;
    for (; i + 4 <= characters.size(); i += 4) {
      uint64_t sum = value_ * kFactors[0];
      for (size_t j = 0; j < 4; ++j) {
        const uint64_t next = low ^ static_cast<unsigned char>(characters[i + j]);
        sum += (next - low) * kFactors[j];
        low = next * (kSquare & 0xFF);
      }
      value_ = sum;
    }
    for (; i < characters.size(); ++i) addLow(static_cast<unsigned char>(characters[i]));
  }
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

  void addLow(uint64_t unit) { value_ = (value_ ^ unit) * kSquare; }

  uint64_t value_ = 0xcbf29ce484222325;
};

}  // namespace qz
