#include "text/character_blocks.h"

#include "markup/growth.h"
#include "markup/wrapping.h"

namespace qz {
namespace {

// The id of a glyph, as a piece of markup.
struct GlyphId {
  int32_t block;
  int32_t character;
  int32_t part;
  size_t room() const { return 40; }
  char* put(char* out) const {
    using qz::put;
    out = put(writeDecimal(put(out, "QZ_"), block), "_");
    out = writeDecimal(out, character);
    return part < 0 ? out : writeDecimal(put(out, "."), part);
  }
};

// One coordinate of a use, left out when it is 0.
struct OffsetAttribute {
  char name;
  int32_t value;
  size_t room() const { return 16; }
  char* put(char* out) const {
    using qz::put;
    if (value == 0) return out;
    out = put(out, " ");
    *out++ = name;
    return put(writeDecimal(put(out, "=\""), value), "\"");
  }
};

}  // namespace

void CharacterBlocks::begin(PageContent& content, RegionNumber region,
                            const PaintAttributes& paint) {
  content.appendElement(region, [&](MarkupText& out) { out.append("<g", paint, ">"); });
  content.openBlock();
  ++blockCount_;
  firstGlyphs_.clear();
}

void CharacterBlocks::end(PageContent& content) {
  MarkupText& out = content.block();
  appendWhole(out, [&] { writeEnd(out); });
  pending_ = false;
  firstGlyphs_.clear();
  content.closeBlock();
}

void CharacterBlocks::writeEnd(MarkupText& out) const {
  if (hasCharacter()) {
    if (pending_) writePending(out, kOnlyPart);
    writeReference(out);
  }
  out.append("</g>");
}

void CharacterBlocks::beginCharacter(PageContent& content, const POINT& position,
                                     int32_t reference) {
  reserveMore(firstGlyphs_, 1);
  if (hasCharacter()) finishCharacter(content);
  firstGlyphs_.push_back(kNoGlyph);
  position_ = position;
  reference_ = reference;
  partCount_ = 0;
}

void CharacterBlocks::finishCharacter(PageContent& content) {
  MarkupText& out = content.block();
  if (pending_) writePending(out, kOnlyPart);
  pending_ = false;
  writeReference(out);
  reference_ = kNoReference;
}

// Only what this block has drawn itself can be repeated: a character that was a reference has no
// outline of its own.
void CharacterBlocks::writeReference(MarkupText& out) const {
  if (partCount_ != 0 || reference_ < 0 || reference_ > character()) return;
  const int32_t glyph = firstGlyphs_[static_cast<size_t>(reference_)];
  if (glyph != kNoGlyph) writeUse(out, static_cast<GlyphNumber>(glyph));
}

void CharacterBlocks::writePending(MarkupText& out, int32_t part) const {
  appendWhole(out, [&] {
    out.append(pendingForm_.tag, " id=\"", GlyphId{blockCount_ - 1, character(), part}, "\"");
    out.appendText(pendingTransform_);
    out.append(pendingForm_.lead);
    out.appendText(geometry_);
    out.append(pendingForm_.end);
  });
}

// A character at (0, 0) is the exception: it gets the glyph's position as it is, not negated.
void CharacterBlocks::writeUse(MarkupText& out, GlyphNumber number) const {
  const Glyph& glyph = glyphs_[number];
  POINT offset = glyph.origin;
  if (position_.x != 0 || position_.y != 0)
    offset = {wrappingSubtract(position_.x, glyph.origin.x),
              wrappingSubtract(position_.y, glyph.origin.y)};
  out.append("<use xlink:href=\"#", GlyphId{glyph.block, glyph.character, glyph.part}, "\"",
             OffsetAttribute{'x', static_cast<int32_t>(offset.x)},
             OffsetAttribute{'y', static_cast<int32_t>(offset.y)}, "/>");
}

}  // namespace qz
