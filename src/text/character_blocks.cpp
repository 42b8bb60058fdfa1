#include "text/character_blocks.h"

#include <cassert>

#include "base/make_room.h"
#include "base/wrapping.h"

namespace qz {
namespace {

// The id of a glyph, as a piece of markup.
struct GlyphId {
  Glyph glyph;
  size_t maxSize() const { return 3 + 1 + 1 + 3 * kMaxDecimalSize<int32_t>; }
  char* put(char* out) const {
    out = putAll(out, "QZ_", glyph.block, "_", glyph.character);
    return glyph.part == Glyph::kOnlyPart ? out : putAll(out, ".", glyph.part);
  }
};

// One coordinate of a use, left out when it is 0.
struct OffsetAttribute {
  const char (&start)[5];
  int32_t value;
  size_t maxSize() const { return sizeof start - 1 + kMaxDecimalSize<int32_t> + 1; }
  char* put(char* out) const { return value == 0 ? out : putAll(out, start, value, "\""); }
};

}  // namespace

void CharacterBlockStart::write(MarkupText& out) const { out.append("<g", paint, ">"); }

void CharacterBlocks::begin() noexcept {
  ++blockCount_;
  firstGlyphs_.clear();
  reference_ = kNoReference;
  partCount_ = 0;
  bodyWaits_ = false;
}

void CharacterBlocks::writeEnd(MarkupText& out) const {
  writeCharacterEnd(out);
  out.append("</g>");
}

void CharacterBlocks::beginCharacter(MarkupText& out, const POINT& position, uint32_t reference) {
  makeRoom(firstGlyphs_);
  if (bodyWaits_ || partCount_ == 0)
    out.appendWhole([this](MarkupText& text) { writeCharacterEnd(text); });
  bodyWaits_ = false;
  firstGlyphs_.push_back(kNoGlyph);
  position_ = position;
  reference_ = reference;
  partCount_ = 0;
}

// Only what this block has drawn itself can be repeated: a character that was a reference has no
// outline of its own.
void CharacterBlocks::writeCharacterEnd(MarkupText& out) const {
  if (bodyWaits_) {
    out.append("\"");
    out.appendText(body_);
  }
  if (partCount_ != 0 || reference_ >= firstGlyphs_.size()) return;
  const GlyphNumber glyph = firstGlyphs_[reference_];
  if (glyph != kNoGlyph) writeUse(out, glyph);
}

void CharacterBlocks::draw(MarkupText& out, const Shape& shape) {
  if (firstGlyphs_.empty()) return;
  if (bodyWaits_) {  // so it was the first part of several
    out.appendWhole([this](MarkupText& text) {
      text.append(".0\"");
      text.appendText(body_);
    });
    glyphs_.makeFirstPart(firstGlyphs_.back());
    bodyWaits_ = false;
  }
  const GlyphNumber glyph = place(out, shape);
  if (partCount_ == 0) firstGlyphs_.back() = glyph;
  ++partCount_;
}

// Writes an outline, or a use of the one that it equals.
GlyphNumber CharacterBlocks::place(MarkupText& out, const Shape& shape) {
  assert(!bodyWaits_);
  const TypedPoints* const path = shape.typedPoints();
  GlyphNumber known = path == nullptr ? kNoGlyph : glyphs_.findByPoints(*path);
  if (known == kNoGlyph) {
    body_.restart();
    const uint64_t textHash = shape.writeHashedBody(body_, {position_, 0}).value();
    known = glyphs_.findByText(textHash);
    if (known == kNoGlyph) return define(out, shape.tag(), textHash);
    if (path != nullptr) glyphs_.rememberPoints(*path, known);
  }
  writeUse(out, known);
  return known;
}

// Writes an outline that is seen for the first time, or only its start, if it is a character's
// first.
GlyphNumber CharacterBlocks::define(MarkupText& out, const TagStart& tag, uint64_t textHash) {
  const int32_t part = partCount_ == 0 ? Glyph::kOnlyPart : partCount_;
  const Glyph glyph{blockCount_ - 1, character(), part, position_};
  glyphs_.makeRoom();
  out.appendWhole([&](MarkupText& text) {
    text.append(tag, " id=\"", GlyphId{glyph});
    if (partCount_ == 0) return;
    text.append("\"");
    text.appendText(body_);
  });
  bodyWaits_ = partCount_ == 0;
  return glyphs_.add(textHash, glyph);
}

// One append, so it is whole or nothing. A character at (0, 0) is the exception: it gets the
// glyph's position as it is, not negated.
void CharacterBlocks::writeUse(MarkupText& out, GlyphNumber number) const {
  const Glyph glyph = glyphs_[number];
  POINT offset = glyph.origin;
  if (position_.x != 0 || position_.y != 0)
    offset = {wrappingSubtract(position_.x, glyph.origin.x),
              wrappingSubtract(position_.y, glyph.origin.y)};
  out.append("<use xlink:href=\"#", GlyphId{glyph}, "\"",
             OffsetAttribute{" x=\"", static_cast<int32_t>(offset.x)},
             OffsetAttribute{" y=\"", static_cast<int32_t>(offset.y)}, "/>");
}

}  // namespace qz
