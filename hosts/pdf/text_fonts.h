// Which glyphs of a page are set in fonts, and the fonts, which are made for the page.
#pragma once

#include <unordered_map>

#include "opentype.h"
#include "plan.h"

namespace qz::pdf {

// Of one design. A second one is opened when a character has two shapes.
struct PageFont {
  uint32_t design = 0;
  FontGlyphs glyphs;
};

struct FontUse {
  uint16_t font = 0;       // number of the page's font, from 1; 0 for a glyph that is drawn
  char16_t character = 0;  // in that font
};

struct TextFonts {
  int page = 0;  // tells its families from those of other pages
  std::vector<PageFont> fonts;
  std::unordered_map<const Text*, std::vector<FontUse>> uses;  // of each glyph of a text

  FontUse useOf(const Text& text, size_t glyph) const {
    const auto found = uses.find(&text);
    return found == uses.end() ? FontUse() : found->second[glyph];
  }
  std::string family(size_t font) const {
    return 'p' + std::to_string(page) + 'f' + std::to_string(font);
  }
};

// Texts that run to the right in simple scripts, and are drawn by calls, are set in fonts. `shapes`
// must outlive the result.
TextFonts makeTextFonts(int page, const Plan& plan, const std::vector<Outline>& outlines,
                        const std::vector<Shape>& shapes);

// An SVG picture without content whose style brings the fonts to the page.
std::string fontPicture(const TextFonts& fonts);

}  // namespace qz::pdf
