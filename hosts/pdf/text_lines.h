// The text of a page as lines that can be found, selected and copied.
#pragma once

#include "text_fonts.h"

namespace qz::pdf {

// A line, or a part of one, in reading order.
struct TextLine {
  std::u16string text;
  std::vector<int32_t> positions;  // x of each code unit; of a line that is not level none
  POINT origin = {};
  int32_t size = 0;
  bool serif = false, monospaced = false;
  int32_t field = -1, link = -1;  // what it belongs to
};

// From so much of the size on a gap between glyphs stands for a space, and from so much on it ends
// a line.
constexpr float spaceGap = 0.13f, endGap = 1.5f, backGap = -0.7f;

// The text of a scene, but not what is set in fonts.
std::vector<TextLine> makeTextLines(const Scene& scene, const std::vector<Outline>& outlines,
                                    const TextFonts& fonts);

// The end of a glyph and the further characters that it stands for.
size_t glyphEnd(const Text& text, size_t first);

// What they are, a ligature being one character.
std::u32string lettersOf(const Text& text, size_t first, size_t end);

// The link that a point lies on, or -1.
int32_t linkAt(const std::vector<Link>& links, Point point);

}  // namespace qz::pdf
