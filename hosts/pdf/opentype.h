// OpenType fonts from outlines. No library that Debian has makes a font from nothing and promises a
// stable interface, so this one writes what browsers need of one: cubic outlines (CFF), a table of
// characters, widths. What it wrote it reads back, so that fonts can be merged.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "scene.h"

namespace qz::pdf {

// Glyphs by their characters. More than maxFontGlyphs of them do not fit.
using FontGlyphs = std::map<char16_t, const Shape*>;
constexpr size_t maxFontGlyphs = 380;

// A glyph as a font file has it.
struct FontGlyph {
  std::string outline;  // a charstring
  int advance = 0, left = 0;
  friend bool operator==(const FontGlyph&, const FontGlyph&) = default;
};

// What one font file has and another has not.
struct Font {
  std::map<char16_t, FontGlyph> glyphs;  // a space is among them
  Box bounds;                            // of all glyphs and the origin
};

Font makeFont(const FontGlyphs& glyphs);

// The font's file, as a data address. The same font gives the same bytes.
constexpr std::string_view fontAddressStart = "data:font/otf;base64,";
std::string fontAddress(const Font& font);
// The font whose address this is; nothing when it is no address that fontAddress gives.
std::optional<Font> fontOf(std::string_view address);

}  // namespace qz::pdf
