// Text drawn as outlines: each distinct outline is written once and used again by reference.
#pragma once

#include <cstdint>
#include <vector>

#include "markup/markup_text.h"
#include "paint/paint.h"
#include "shapes/shapes.h"
#include "text/glyph_index.h"

namespace qz {

// The start tag of a block: an element of the page.
struct CharacterBlockStart {
  const PaintAttributes& paint;

  void write(MarkupText& out) const;
  bool usesExtensionNamespace() const { return false; }
};

// The character blocks of one page. At most one is open, the newest. Its text, `out`, is the
// page's: it ends with the block, and only these operations append to it while the block is open.
class CharacterBlocks {
 public:
  // Begins a block, of which the start tag is written; the one before has ended.
  void begin() noexcept;
  // What ends the open block, with its end tag.
  void writeEnd(MarkupText& out) const;

  // Starts a character. One with a `reference`, the index of an earlier one, repeats the first
  // outline of that character, unless it is drawn after all.
  static constexpr uint32_t kNoReference = UINT32_MAX;
  void beginCharacter(MarkupText& out, const POINT& position, uint32_t reference);
  // Adds an outline to the newest character; before the first one it does nothing, reads nothing.
  void draw(MarkupText& out, const Shape& shape);

 private:
  GlyphNumber place(MarkupText& out, const Shape& shape);
  GlyphNumber define(MarkupText& out, const TagStart& tag, uint64_t textHash);
  void writeUse(MarkupText& out, GlyphNumber glyph) const;
  void writeCharacterEnd(MarkupText& out) const;
  int32_t character() const { return static_cast<int32_t>(firstGlyphs_.size()) - 1; }

  GlyphIndex glyphs_;
  int32_t blockCount_ = 0;

  // Of the open block: the first outline of each character.
  std::vector<GlyphNumber> firstGlyphs_;
  // Its newest character.
  POINT position_{0, 0};
  uint32_t reference_ = kNoReference;
  int32_t partCount_ = 0;
  // The body of the outline that is drawn. If it is new, and its character's first one, it waits
  // here for the next call, the text ending after the id: whether the id tells the part depends on
  // whether there is a second one.
  MarkupText body_;
  bool bodyWaits_ = false;
};

}  // namespace qz
