// Fonts: each distinct one is a CSS class of the document.
#pragma once

#include <cstdint>
#include <vector>

#include "base/hash_index.h"
#include "markup/markup_text.h"

namespace qz {

// The number of a font on its page; its class is "QZ_fnt" and that number.
using FontNumber = int32_t;
inline constexpr FontNumber kNoFont = -1;

// One CSS rule, a stretch of the fonts' common text.
struct FontStyleSheet {
  size_t firstUnit;
  size_t unitCount;
  bool used;
};

// The fonts of one page, numbered in the order in which they are first set, and the current one.
class Fonts {
 public:
  FontNumber current() const { return current_; }

  // A font is known by the hash of its CSS text alone: two texts with one hash share a rule.
  void set(const CodeUnit* family, int32_t familyLength, int32_t size, bool italic, bool bold);
  void clear() { current_ = kNoFont; }
  // A text run refers to the current font, so it is written.
  void markUsed() noexcept {
    if (current_ != kNoFont) fonts_[static_cast<size_t>(current_)].used = true;
  }

  // The rules of the used fonts within a style element; nothing when there are none.
  void write(MarkupText& out) const;

 private:
  Utf16String css_;  // scratch, of set()
  Utf16String cssTexts_;
  std::vector<FontStyleSheet> fonts_;
  HashIndex index_;
  FontNumber current_ = kNoFont;
};

}  // namespace qz
