// OpenType fonts from outlines. No library that Debian has makes a font from nothing and promises a
// stable interface, so this one writes what browsers need of one: cubic outlines (CFF), a table of
// characters, widths.
#pragma once

#include <map>
#include <string>

#include "scene.h"

namespace qz::pdf {

// Glyphs by their characters; a space is there anyway. More than maxFontGlyphs of them do not fit.
using FontGlyphs = std::map<char16_t, const Shape*>;
constexpr size_t maxFontGlyphs = 380;

// The font file. The same glyphs give the same bytes.
std::string makeOpenType(const FontGlyphs& glyphs);

}  // namespace qz::pdf
