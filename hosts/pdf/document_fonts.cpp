#include "document_fonts.h"

#include <algorithm>

namespace qz::pdf {
namespace {

// Adds the glyphs of another font, unless a character has two shapes then. Spaces may be of any
// width, since each letter has its place.
bool takes(Font& font, const Font& other) {
  size_t more = 0;
  for (const auto& [character, glyph] : other.glyphs) {
    const auto known = font.glyphs.find(character);
    if (known == font.glyphs.end())
      ++more;
    else if (character != u' ' && known->second != glyph)
      return false;
  }
  if (font.glyphs.size() + more > maxFontGlyphs) return false;
  font.glyphs.insert(other.glyphs.begin(), other.glyphs.end());
  font.bounds.include(other.bounds);
  return true;
}

}  // namespace

// Markup is nowhere else in a page than where it is meant: text has no "<".
std::string DocumentFonts::share(const std::string& page) {
  const size_t style = std::min(page.find("<style>@font-face{"), page.size());
  const size_t styleEnd = std::min(page.find("</style>", style), page.size());
  std::string result;
  size_t done = 0;
  for (size_t at = style; (at = page.find(fontAddressStart, at)) < styleEnd;) {
    const size_t end = std::min(page.find(')', at), styleEnd);
    if (const auto font = fontOf(std::string_view(page).substr(at, end - at))) {
      result += page.substr(done, at - done) + "<@" + std::to_string(numberOf(*font)) + '>';
      done = end;
    }
    at = end;
  }
  return result + page.substr(done);
}

size_t DocumentFonts::numberOf(const Font& font) {
  const auto found =
      std::find_if(fonts_.begin(), fonts_.end(), [&](Font& shared) { return takes(shared, font); });
  const auto number = static_cast<size_t>(found - fonts_.begin());
  if (found == fonts_.end()) fonts_.push_back(font);
  return number;
}

}  // namespace qz::pdf
