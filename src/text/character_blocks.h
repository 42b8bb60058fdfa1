// Text drawn as outlines: each distinct outline is written once and used again by reference.
#pragma once

#include <cstdint>
#include <vector>

#include "model/page_content.h"
#include "paint/paint.h"
#include "text/glyph_index.h"

namespace qz {

// The character blocks of one page; at most one is open, the newest. The text of a block goes to
// PageContent::block().
class CharacterBlocks {
 public:
  // The caller has ended the block before. The new one is an element of the page.
  void begin(PageContent& content, RegionNumber region, const PaintAttributes& paint);
  void end(PageContent& content);

  // Starts a character of the open block. One with a `reference` (an index, else negative) repeats
  // the first outline of that character, unless it is drawn after all.
  void beginCharacter(PageContent& content, const POINT& position, int32_t reference);
  bool hasCharacter() const { return !firstGlyphs_.empty(); }
  const POINT& position() const { return position_; }

  // Adds an outline to the newest character.
  template <class Shape>
  void addShape(PageContent& content, const Shape& shape);

  // Writes what is not written yet of an open block: of its newest character, and its end tag.
  void writeEnd(MarkupText& out) const;

 private:
  static constexpr int32_t kNoGlyph = -1;
  static constexpr int32_t kNoReference = -1;
  static constexpr int32_t kOnlyPart = -1;

  template <class Shape>
  void addGlyph(MarkupText& out, const GlyphIndex::Search& search, const Shape& shape);
  void finishCharacter(PageContent& content);
  void writePending(MarkupText& out, int32_t part) const;
  void writeReference(MarkupText& out) const;
  void writeUse(MarkupText& out, GlyphNumber glyph) const;
  int32_t character() const { return static_cast<int32_t>(firstGlyphs_.size()) - 1; }

  GlyphIndex glyphs_;
  int32_t blockCount_ = 0;

  // The open block: the first outline of each of its characters.
  std::vector<int32_t> firstGlyphs_;
  // Its newest character.
  POINT position_{0, 0};
  int32_t reference_ = kNoReference;
  int32_t partCount_ = 0;
  // A new outline that is a character's first waits for the next call: whether its id tells the
  // part depends on whether there is a second one.
  bool pending_ = false;
  ShapeForm pendingForm_{};
  MarkupText pendingTransform_;
  MarkupText geometry_;  // of the outline that waits, and before that of the one looked for
};

template <class Shape>
void CharacterBlocks::addShape(PageContent& content, const Shape& shape) {
  MarkupText& out = content.block();
  if (pending_) {
    writePending(out, 0);
    glyphs_[glyphs_.count() - 1].part = 0;
    pending_ = false;
  }
  const GlyphIndex::Search search = glyphs_.find(shape, geometry_);
  const GlyphNumber glyph = search.glyph.value_or(glyphs_.count());
  if (search.glyph)
    writeUse(out, glyph);
  else
    addGlyph(out, search, shape);
  if (partCount_ == 0) firstGlyphs_.back() = static_cast<int32_t>(glyph);
  ++partCount_;
  if (search.glyph) glyphs_.remember(search, shape, glyph);
}

// An outline that is seen for the first time; geometry_ holds its plain text.
template <class Shape>
void CharacterBlocks::addGlyph(MarkupText& out, const GlyphIndex::Search& search,
                               const Shape& shape) {
  pendingForm_ = shape.form();
  pendingTransform_.restart();
  writeTransform(pendingTransform_, shape);
  if (isRounded(shape)) {
    geometry_.restart();
    writeOutline(geometry_, shape);
  }
  glyphs_.reserveOne();
  pending_ = partCount_ == 0;
  if (!pending_) writePending(out, partCount_);
  const int32_t part = pending_ ? kOnlyPart : partCount_;
  glyphs_.add(search, {blockCount_ - 1, character(), part, position_});
}

}  // namespace qz
