#include "text_lines.h"

#include <optional>
#include <string_view>

namespace qz::pdf {
namespace {

struct Character {
  char32_t code;
  float start, end;  // along the line
  Point origin;
};

bool isIn(char32_t c, char32_t first, char32_t last) { return c >= first && c <= last; }

bool isRightToLeft(char32_t c) {
  return isIn(c, 0x590, 0x8FF) || isIn(c, 0xFB1D, 0xFDFF) || isIn(c, 0xFE70, 0xFEFC) ||
         isIn(c, 0x10800, 0x10FFF) || isIn(c, 0x1E800, 0x1EFFF);
}

// Digits of Arabic run from left to right as all digits do.
bool isDigit(char32_t c) {
  return isIn(c, '0', '9') || isIn(c, 0x660, 0x669) || isIn(c, 0x6F0, 0x6F9);
}

bool isLeftToRight(char32_t c) {
  return isDigit(c) || isIn(c, 'A', 'Z') || isIn(c, 'a', 'z') || isIn(c, 0xC0, 0x58F) ||
         isIn(c, 0x900, 0x1FFF) || isIn(c, 0x3040, 0xD7FF);
}

// Vowel signs of Indic scripts that are drawn before the consonant that they are read after.
bool isDrawnBefore(char32_t c) {
  constexpr std::u32string_view signs =
      U"\u093F\u094E\u09BF\u09C7\u09C8\u0A3F\u0ABF\u0B47\u0BC6\u0BC7\u0BC8\u0D46\u0D47\u0D48"
      U"\u0DD9\u0DDA\u0DDB";
  return signs.find(c) != std::u32string_view::npos;
}

bool isIndicConsonant(char32_t c) {
  return isIn(c, 0x900, 0xDFF) && ((c & 0x7F) >= 0x15 && (c & 0x7F) <= 0x39);
}

bool isVirama(char32_t c) { return isIn(c, 0x900, 0xDFF) && ((c & 0x7F) == 0x4D || c == 0xDCA); }

// What browsers find by its plain letters.
char32_t ligature(std::u32string_view letters) {
  constexpr std::pair<std::u32string_view, char32_t> ligatures[] = {
      {U"ff", 0xFB00}, {U"fi", 0xFB01}, {U"fl", 0xFB02}, {U"ffi", 0xFB03}, {U"ffl", 0xFB04}};
  for (const auto& [plain, code] : ligatures)
    if (plain == letters) return code;
  return 0;
}

// ---- One line -----------------------------------------------------------------------------------

class Line {
 public:
  Line(const Text& text, Point origin, int32_t field, int32_t link)
      : along_(text.along),
        start_(origin),
        size_(text.size),
        serif_(text.serif),
        monospaced_(text.monospaced),
        field_(field),
        link_(link) {}

  bool continues(const Text& text, const Character& c, int32_t field, int32_t link) const {
    if (field != field_ || link != link_ || characters_.empty()) return false;
    const float larger = std::max(size_, text.size);
    if (dot(along_, text.along) < 0.99f) return false;
    if (std::abs(cross(along_, c.origin - start_)) > 0.5f * larger) return false;
    const Character& last = characters_.back();
    const float gap = c.start - last.end, gapBefore = last.start - c.end;
    if (isRightToLeft(c.code) && gapBefore > -0.5f * larger && gapBefore < 1.5f * larger)
      return true;
    return gap > backGap * larger && gap < endGap * larger;
  }

  void add(const Character& c, float size) {
    if (!characters_.empty()) {
      const Character& last = characters_.back();
      const float gap = std::max(c.start - last.end, last.start - c.end);
      if (gap > spaceGap * std::max(size_, size) && last.code != ' ' && c.code != ' ')
        characters_.push_back({' ', last.end, last.end, last.origin});
    }
    characters_.push_back(c);
    size_ = std::max(size_, size);
  }

  std::optional<TextLine> finish() {
    orderRightToLeft();
    orderIndic();
    TextLine line;
    line.field = field_;
    line.link = link_;
    line.size = std::max(1, toUnits(size_));
    line.serif = serif_;
    line.monospaced = monospaced_;
    const bool level = along_.x > 0.999f;
    if (!level) line.size = std::min(line.size, toUnits(2 * unitsPerPoint));
    bool any = false;
    for (const Character& c : characters_) {
      const int32_t x = toUnits(level ? c.start : start_.x);
      if (x < 0) continue;
      if (line.text.empty()) line.origin = {x, toUnits(start_.y)};
      append(line, c.code, x);
      any |= c.code != ' ';
    }
    if (!level) line.positions.clear();
    return any ? std::optional(std::move(line)) : std::nullopt;
  }

 private:
  static void append(TextLine& line, char32_t code, int32_t x) {
    if (code >= 0x10000) {
      line.text += static_cast<char16_t>(0xD7C0 + (code >> 10));
      line.positions.push_back(x);
      code = 0xDC00 + (code & 0x3FF);
    }
    line.text += static_cast<char16_t>(code);
    line.positions.push_back(x);
  }

  // Most producers draw right-to-left text from the left to the right. Turns that around, but not
  // the numbers and foreign words in it.
  void orderRightToLeft() {
    size_t right = 0, left = 0;
    for (const Character& c : characters_) {
      right += isRightToLeft(c.code) && !isDigit(c.code);
      left += isLeftToRight(c.code);
    }
    if (right == 0) return;
    if (right < left)
      turnRuns(isRightToLeft, isLeftToRight);
    else if (turn(0, characters_.size()))
      turnRuns(
          isLeftToRight, [](char32_t c) { return isRightToLeft(c) && !isDigit(c); }, true);
  }

  // Reverses a range that runs from the left to the right, or in any case.
  bool turn(size_t first, size_t end, bool always = false) {
    if (!always && characters_[first].start > characters_[end - 1].start) return false;
    std::reverse(characters_.begin() + static_cast<ptrdiff_t>(first),
                 characters_.begin() + static_cast<ptrdiff_t>(end));
    return true;
  }

  // Turns each run of such characters, with what stands between them.
  template <class IsIn, class Ends>
  void turnRuns(const IsIn& isIn, const Ends& ends, bool always = false) {
    for (size_t i = 0; i < characters_.size(); ++i) {
      if (!isIn(characters_[i].code)) continue;
      size_t last = i;
      for (size_t k = i; k < characters_.size() && !ends(characters_[k].code); ++k)
        if (isIn(characters_[k].code)) last = k;
      turn(i, last + 1, always);
      i = last;
    }
  }

  void orderIndic() {
    for (size_t i = 0; i + 1 < characters_.size(); ++i) {
      if (!isDrawnBefore(characters_[i].code) || !isIndicConsonant(characters_[i + 1].code))
        continue;
      size_t end = i + 2;
      while (end + 1 < characters_.size() && isVirama(characters_[end].code) &&
             isIndicConsonant(characters_[end + 1].code))
        end += 2;
      std::rotate(characters_.begin() + static_cast<ptrdiff_t>(i),
                  characters_.begin() + static_cast<ptrdiff_t>(i + 1),
                  characters_.begin() + static_cast<ptrdiff_t>(end));
      i = end - 1;
    }
  }

  Point along_, start_;
  float size_;
  bool serif_, monospaced_;
  int32_t field_, link_;
  std::vector<Character> characters_;
};

// ---- A page's lines -----------------------------------------------------------------------------

class Collector {
 public:
  Collector(const Scene& scene, const std::vector<Outline>& outlines, const TextFonts& fonts)
      : scene_(scene), outlines_(outlines), fonts_(fonts) {
    visit(scene.root);
    endLine();
  }

  std::vector<TextLine> lines;

 private:
  void visit(const Node& node) {
    if (const Text* text = std::get_if<Text>(&node.content)) addText(*text, node.field);
    for (const Node& child : node.children) visit(child);
  }

  void addText(const Text& text, int32_t field) {
    for (size_t i = 0; i < text.glyphs.size();) {
      const size_t end = glyphEnd(text, i);
      if (fonts_.useOf(text, i).font == 0) addGlyph(text, i, end, field);
      i = end;
    }
  }

  void addGlyph(const Text& text, size_t first, size_t end, int32_t field) {
    const std::u32string letters = lettersOf(text, first, end);
    const Glyph& glyph = text.glyphs[first];
    const float start = dot(text.along, glyph.origin);
    const float width = outlines_[glyph.outline].advance;
    for (size_t i = 0; i < letters.size(); ++i) {
      const float part = width / static_cast<float>(letters.size());
      addCharacter(text,
                   {letters[i], start + part * static_cast<float>(i),
                    start + part * static_cast<float>(i + 1), glyph.origin},
                   field);
    }
  }

  void addCharacter(const Text& text, const Character& c, int32_t field) {
    const int32_t link =
        field >= 0 ? -1
                   : linkAt(scene_.links, {c.origin.x + text.along.x * (c.end - c.start) / 2,
                                           c.origin.y - text.size / 4});
    if (line_ && !line_->continues(text, c, field, link)) endLine();
    if (!line_) line_ = std::make_unique<Line>(text, c.origin, field, link);
    line_->add(c, text.size);
  }

  void endLine() {
    if (!line_) return;
    if (std::optional<TextLine> line = line_->finish()) lines.push_back(std::move(*line));
    line_.reset();
  }

  const Scene& scene_;
  const std::vector<Outline>& outlines_;
  const TextFonts& fonts_;
  std::unique_ptr<Line> line_;
};

}  // namespace

int32_t linkAt(const std::vector<Link>& links, Point point) {
  for (size_t i = 0; i < links.size(); ++i)
    if (links[i].bounds.holds(point)) return static_cast<int32_t>(i);
  return -1;
}

size_t glyphEnd(const Text& text, size_t first) {
  size_t end = first + 1;
  while (end < text.glyphs.size() && text.glyphs[end].continued) ++end;
  return end;
}

std::u32string lettersOf(const Text& text, size_t first, size_t end) {
  std::u32string letters;
  for (size_t i = first; i < end; ++i)
    if (text.glyphs[i].character != 0) letters += text.glyphs[i].character;
  if (const char32_t one = ligature(letters)) letters = one;
  return letters;
}

std::vector<TextLine> makeTextLines(const Scene& scene, const std::vector<Outline>& outlines,
                                    const TextFonts& fonts) {
  return std::move(Collector(scene, outlines, fonts).lines);
}

}  // namespace qz::pdf
