// The outlines that character blocks have written on a page.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <optional>
#include <vector>

#include "markup/content_key.h"
#include "shapes/shapes.h"

namespace qz {

using GlyphNumber = uint32_t;

// A written outline: its id is "QZ_{block}_{character}", with ".{part}" when its character has
// several outlines.
struct Glyph {
  int32_t block;
  int32_t character;
  int32_t part;  // negative when it is the character's only one
  POINT origin;  // the position of the character it was drawn for
};

// Finds outlines by the hash of their geometry text: outlines of one hash are the same outline.
//
// Most paths are drawn again with the very same points, so paths are looked for by their points
// first, and only on a miss by their text. (Points of ignored types can give one text from
// different arguments.)
class GlyphIndex {
 public:
  // An outline that is looked for: its number if it is known, else what adding it takes.
  struct Search {
    std::optional<GlyphNumber> glyph;
    uint64_t textKey;
    uint64_t pointsKey;
  };

  // If the outline is not known, `geometry` holds its plain text afterwards.
  Search find(const Path& path, MarkupText& geometry) const;
  template <class Shape>
  Search find(const Shape& shape, MarkupText& geometry) const {
    return findByText(shape, geometry);
  }

  // Adds the outline under the number count(). After reserveOne() it cannot fail.
  void reserveOne();
  void add(const Search& search, const Glyph& glyph) noexcept;
  // Remembers the points of a path that was found by its text: it comes again, so it will come more
  // often. Most outlines of a page that are new never come again.
  void remember(const Search& search, const Path& path, GlyphNumber number);
  template <class Shape>
  void remember(const Search&, const Shape&, GlyphNumber) {}

  Glyph& operator[](GlyphNumber number) { return glyphs_[number]; }
  const Glyph& operator[](GlyphNumber number) const { return glyphs_[number]; }
  GlyphNumber count() const { return static_cast<GlyphNumber>(glyphs_.size()); }

 private:
  struct KnownPath {
    const unsigned char* bytes;  // the points, then the types
    uint32_t count;
    GlyphNumber glyph;
    bool equals(const Path& path) const;
  };

  template <class Shape>
  Search findByText(const Shape& shape, MarkupText& geometry) const {
    geometry.restart();
    shape.writeGeometry(geometry);
    ContentHash key;
    key.add(geometry);
    return {texts_.find(key.value()), key.value(), 0};
  }

  std::vector<Glyph> glyphs_;
  KeyIndex texts_;
  KeyIndex points_;
  std::vector<KnownPath> paths_;
  std::pmr::monotonic_buffer_resource pathBytes_{std::pmr::new_delete_resource()};
};

}  // namespace qz
