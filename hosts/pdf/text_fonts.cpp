#include "text_fonts.h"

#include "text_lines.h"

namespace qz::pdf {
namespace {

constexpr int maxFontSize = 10000;  // in units; browsers show larger letters in this size

struct Range {
  char32_t first, last;
};

template <size_t count>
bool isIn(char32_t c, const Range (&ranges)[count]) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [&](const Range& range) { return range.first <= c && c <= range.last; });
}

// Scripts whose letters browsers join, reorder or stack, and marks that they move.
bool isComplex(char32_t c) {
  constexpr Range ranges[] = {
      {0x300, 0x36F},   {0x483, 0x489},   {0x590, 0x109F},  {0x1100, 0x11FF}, {0x135D, 0x135F},
      {0x1700, 0x1CFF}, {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF}, {0x302A, 0x302F}, {0x3099, 0x309A},
      {0xA800, 0xABFF}, {0xD7B0, 0xD7FF}, {0xFB1D, 0xFDFF}, {0xFE20, 0xFE2F}, {0xFE70, 0xFEFC}};
  return isIn(c, ranges);
}

// What browsers show as nothing or in a way of their own, whatever the font has.
bool isSpecial(char32_t c) {
  constexpr Range ranges[] = {{0, ' '},         {0x7F, 0xA0},      {0xAD, 0xAD},
                              {0x2000, 0x200F}, {0x2028, 0x202F},  {0x205F, 0x206F},
                              {0x3000, 0x3000}, {0xD800, 0xDFFF},  {0xFE00, 0xFE0F},
                              {0xFEFF, 0xFEFF}, {0xFFF0, 0x10FFFF}};
  return isIn(c, ranges);
}

class Chooser {
 public:
  Chooser(const std::vector<Outline>& outlines, const std::vector<Shape>& shapes)
      : outlines_(outlines), shapes_(shapes) {}

  void add(const Text& text) {
    if (toUnits(text.size) > maxFontSize) return;
    for (const Glyph& glyph : text.glyphs)
      if (isComplex(glyph.character)) return;
    std::vector<FontUse>& uses = chosen.uses[&text];
    uses.resize(text.glyphs.size());
    for (size_t i = 0; i < uses.size();) {
      const size_t end = glyphEnd(text, i);
      const std::u32string letters = lettersOf(text, i, end);
      if (letters.size() == 1 && toUnits(text.glyphs[i].origin.x) >= 0)
        uses[i] = choose(text, text.glyphs[i], letters.front());
      i = end;
    }
  }

  TextFonts chosen;

 private:
  FontUse choose(const Text& text, const Glyph& glyph, char32_t letter) {
    const Shape& shape = shapes_[outlines_[glyph.outline].shape];
    const bool blank = shape.points.empty() && (letter == ' ' || letter == 0xA0);
    if (!blank && isSpecial(letter)) return {};
    const char16_t character = blank ? u' ' : static_cast<char16_t>(letter);
    std::vector<uint16_t>& fonts = ofDesign_[text.design];
    for (const uint16_t font : fonts)
      if (takes(chosen.fonts[font - 1u], character, shape)) return {font, character};
    chosen.fonts.push_back({text.design, {{character, &shape}}});
    fonts.push_back(static_cast<uint16_t>(chosen.fonts.size()));
    return {fonts.back(), character};
  }

  static bool takes(PageFont& font, char16_t character, const Shape& shape) {
    const auto known = font.glyphs.find(character);
    if (known != font.glyphs.end()) return known->second == &shape || character == ' ';
    if (font.glyphs.size() >= maxFontGlyphs) return false;
    font.glyphs.emplace(character, &shape);
    return true;
  }

  const std::vector<Outline>& outlines_;
  const std::vector<Shape>& shapes_;
  std::unordered_map<uint32_t, std::vector<uint16_t>> ofDesign_;
};

}  // namespace

TextFonts makeTextFonts(int page, const Plan& plan, const std::vector<Outline>& outlines,
                        const std::vector<Shape>& shapes) {
  Chooser chooser(outlines, shapes);
  chooser.chosen.page = page;
  for (const Item& item : plan.items) {
    const Text* text = item.node != nullptr ? std::get_if<Text>(&item.node->content) : nullptr;
    if (text != nullptr && text->drawn && text->design != 0 && item.node->pen.width <= 0)
      chooser.add(*text);
  }
  return std::move(chooser.chosen);
}

std::string fontPicture(const TextFonts& fonts) {
  std::string style;
  for (size_t i = 0; i < fonts.fonts.size(); ++i)
    style += "@font-face{font-family:" + fonts.family(i + 1) + ";src:url(" +
             fontAddress(makeFont(fonts.fonts[i].glyphs)) + ")}";
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 1 1\"><style>" + style +
         "</style></svg>";
}

}  // namespace qz::pdf
