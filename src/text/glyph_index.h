// The outlines that character blocks have written on a page.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <vector>

#include "base/hash_index.h"
#include "shapes/path_data.h"

namespace qz {

using GlyphNumber = uint32_t;
inline constexpr GlyphNumber kNoGlyph = UINT32_MAX;

// A written outline: its id is "QZ_{block}_{character}", with ".{part}" when its character has
// several outlines.
struct Glyph {
  static constexpr int32_t kOnlyPart = -1;
  int32_t block;
  int32_t character;
  int32_t part;  // kOnlyPart when it is the character's only one
  POINT origin;  // the position of the character it was drawn for
};

// Finds outlines by the hash of their geometry's text: outlines of one hash are the same outline.
//
// Most paths are drawn again with the very same points, so paths are looked for by their points
// first, and only on a miss by their text. (Points of ignored types can give one text from
// different arguments.)
class GlyphIndex {
 public:
  // Both return kNoGlyph when there is none.
  GlyphNumber findByText(uint64_t textHash) const {
    return texts_.find(textHash).value_or(kNoGlyph);
  }
  GlyphNumber findByPoints(const TypedPoints& path) const;

  // Adds an outline and returns its number. After makeRoom() it cannot fail.
  void makeRoom();
  GlyphNumber add(uint64_t textHash, const Glyph& glyph) noexcept;
  // A character's only outline becomes the first of several.
  void makeFirstPart(GlyphNumber number) noexcept;
  // Remembers the points of a path that was found by its text: it comes again, so it will come more
  // often. Most outlines of a page that are new never come again.
  void rememberPoints(const TypedPoints& path, GlyphNumber number) noexcept;

  const Glyph& operator[](GlyphNumber number) const { return glyphs_[number]; }

 private:
  struct KnownPath {
    const unsigned char* bytes;  // the points, then the types
    uint32_t count;
    GlyphNumber glyph;
    bool equals(const TypedPoints& path) const;
  };
  uint64_t hashPoints(const TypedPoints& path) const;

  std::vector<Glyph> glyphs_;
  HashIndex texts_;
  HashIndex points_;
  std::vector<KnownPath> paths_;
  std::pmr::monotonic_buffer_resource pathBytes_{std::pmr::new_delete_resource()};
};

}  // namespace qz
