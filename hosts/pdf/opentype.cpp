#include "opentype.h"

#include "svg_markup.h"

namespace qz::pdf {
namespace {

constexpr int ascent = 900, descent = -250;  // of 1000: how high a selection is

// ---- Bytes, the first of a number being the highest

class Bytes {
 public:
  Bytes& u8(uint32_t value) { return put(value, 1); }
  Bytes& u16(uint32_t value) { return put(value, 2); }
  Bytes& u32(uint32_t value) { return put(value, 4); }
  Bytes& s16(int value) { return put(static_cast<uint32_t>(value), 2); }
  Bytes& add(const std::string& bytes) {
    text += bytes;
    return *this;
  }

  std::string text;

 private:
  Bytes& put(uint32_t value, int count) {
    for (int i = count; i-- > 0;) text += static_cast<char>(value >> 8 * i);
    return *this;
  }
};

// ---- CFF

// Numbers as charstrings have them.
void putNumber(Bytes& out, int value) {
  if (value >= -107 && value <= 107)
    out.u8(static_cast<uint32_t>(value + 139));
  else if (value >= 108 && value <= 1131)
    out.u8(static_cast<uint32_t>((value - 108) >> 8) + 247)
        .u8(static_cast<uint32_t>(value - 108) & 255);
  else if (value >= -1131 && value <= -108)
    out.u8(static_cast<uint32_t>((-value - 108) >> 8) + 251)
        .u8(static_cast<uint32_t>(-value - 108) & 255);
  else
    out.u8(28).s16(value);
}

// One outline. Operators take as many segments of a kind as the stack of a reader holds.
class CharString {
 public:
  explicit CharString(const Shape& shape) {
    const auto& points = shape.points;
    for (size_t i = 0; i < points.size();) {
      const int type = shape.types[i] == PT_MOVETO ? PT_MOVETO : shape.types[i] & ~PT_CLOSEFIGURE;
      const size_t count = type == PT_BEZIERTO ? 3 : 1;
      if (i + count > points.size()) break;
      add(type, &points[i], count);
      i += count;
    }
    finishOperator();
    out_.u8(endChar);
  }
  std::string text() { return std::move(out_.text); }

 private:
  enum Operator : uint32_t {
    none = 0,
    lineTo = 5,
    horizontalLineTo = 6,
    verticalLineTo = 7,
    curveTo = 8,
    endChar = 14,
    moveTo = 21,
    verticalHorizontalCurveTo = 30,
    horizontalVerticalCurveTo = 31,
  };
  static constexpr size_t maxStack = 48;

  void add(int type, const POINT* points, size_t count) {
    int deltas[6] = {};
    for (size_t i = 0; i < count; ++i) {
      deltas[2 * i] = points[i].x - at_.x;
      deltas[2 * i + 1] = points[i].y - at_.y;
      at_ = points[i];
    }
    if (type == PT_MOVETO) return put(moveTo, {deltas[0], deltas[1]}, true);
    if (type == PT_LINETO) return addLine(deltas[0], deltas[1]);
    if (deltas[1] == 0 && deltas[4] == 0)
      return put(horizontalVerticalCurveTo, {deltas[0], deltas[2], deltas[3], deltas[5]}, true);
    if (deltas[0] == 0 && deltas[5] == 0)
      return put(verticalHorizontalCurveTo, {deltas[1], deltas[2], deltas[3], deltas[4]}, true);
    put(curveTo, {deltas[0], deltas[1], deltas[2], deltas[3], deltas[4], deltas[5]}, false);
  }

  void addLine(int dx, int dy) {
    if (dy == 0)
      put(horizontalLineTo, {dx}, true);
    else if (dx == 0)
      put(verticalLineTo, {dy}, true);
    else
      put(lineTo, {dx, dy}, false);
  }

  void put(Operator next, std::initializer_list<int> numbers, bool alone) {
    if (next != operator_ || alone || stack_ + numbers.size() > maxStack) finishOperator();
    for (const int number : numbers) putNumber(out_, number);
    operator_ = next;
    stack_ += numbers.size();
  }

  void finishOperator() {
    if (operator_ != none) out_.u8(operator_);
    operator_ = none;
    stack_ = 0;
  }

  Bytes out_;
  POINT at_ = {0, 0};
  Operator operator_ = none;
  size_t stack_ = 0;
};

// CFF's INDEX: strings with the offset of each.
std::string makeIndex(const std::vector<std::string>& items) {
  Bytes out;
  out.u16(static_cast<uint32_t>(items.size()));
  if (items.empty()) return out.text;
  out.u8(4);
  uint32_t offset = 1;
  out.u32(offset);
  for (const std::string& item : items) out.u32(offset += static_cast<uint32_t>(item.size()));
  for (const std::string& item : items) out.add(item);
  return out.text;
}

// An entry of CFF's Top DICT whose size does not depend on its value.
void putEntry(Bytes& out, std::initializer_list<size_t> values, uint32_t name) {
  for (const size_t value : values) out.u8(29).u32(static_cast<uint32_t>(value));
  out.u8(name);
}

std::string makeCff(const std::vector<std::string>& charStrings) {
  const size_t count = charStrings.size();
  // The standard names from the first one on, whatever the glyphs are: nothing reads them.
  const std::string names = Bytes().u8(2).u16(1).u16(static_cast<uint32_t>(count - 2)).text;
  const std::string start = Bytes().u8(1).u8(0).u8(4).u8(4).add(makeIndex({"f"})).text;
  const std::string none = makeIndex({});
  constexpr size_t topSize = 4 * 5 + 3;
  const size_t behindTop = start.size() + makeIndex({std::string(topSize, ' ')}).size();
  const size_t namesAt = behindTop + 2 * none.size(), glyphsAt = namesAt + names.size();
  const std::string glyphs = makeIndex(charStrings);
  Bytes top;
  putEntry(top, {namesAt}, 15);
  putEntry(top, {glyphsAt}, 17);
  putEntry(top, {0, glyphsAt + glyphs.size()}, 18);
  return start + makeIndex({top.text}) + none + none + names + glyphs;
}

// ---- Tables

// Ranges of consecutive characters, whose glyphs are consecutive, too.
std::string makeCmap(const Font& font) {
  struct Range {
    int first, last, glyph;
  };
  std::vector<Range> ranges;
  int glyph = 1;
  for (const auto& [character, outline] : font.glyphs) {
    if (ranges.empty() || ranges.back().last + 1 != character)
      ranges.push_back({character, character, glyph});
    ranges.back().last = character;
    ++glyph;
  }
  ranges.push_back({0xFFFF, 0xFFFF, 0x10000});  // none
  const auto count = static_cast<uint32_t>(ranges.size());
  uint32_t log = 0;
  while (2u << log <= count) ++log;
  Bytes out;
  out.u16(0).u16(1).u16(3).u16(1).u32(12);
  out.u16(4).u16(16 + 8 * count).u16(0).u16(2 * count);
  out.u16(2u << log).u16(log).u16(2 * count - (2u << log));
  for (const Range& range : ranges) out.s16(range.last);
  out.u16(0);
  for (const Range& range : ranges) out.s16(range.first);
  for (const Range& range : ranges) out.s16(range.glyph - range.first);
  for (uint32_t i = 0; i < count; ++i) out.u16(0);
  return out.text;
}

std::string makeHead(const Font& font) {
  const RECT box = font.bounds.rounded();
  Bytes out;
  out.u32(0x10000).u32(0x10000).u32(0).u32(0x5F0F3CF5).u16(3).u16(1000);
  out.u32(0).u32(0).u32(0).u32(0);
  out.s16(box.left).s16(box.top).s16(box.right).s16(box.bottom);
  return out.u16(0).u16(3).u16(2).u16(0).u16(0).text;
}

std::string makeHhea(const Font& font, size_t count) {
  const RECT box = font.bounds.rounded();
  int widest = 0;
  for (const auto& [character, glyph] : font.glyphs) widest = std::max(widest, glyph.advance);
  Bytes out;
  out.u32(0x10000).s16(ascent).s16(descent).s16(0).s16(widest);
  out.s16(box.left).s16(0).s16(box.right).s16(1).s16(0).s16(0);
  return out.u32(0).u32(0).s16(0).u16(static_cast<uint32_t>(count)).text;
}

std::string makeOs2(const Font& font) {
  Bytes out;
  out.u16(3).s16(500).u16(400).u16(5).u16(0);
  for (const int value : {650, 600, 0, 75, 650, 600, 0, 350, 50, 300}) out.s16(value);
  out.s16(0).add(std::string(10, '\0'));  // class and Panose
  out.u32(1).u32(0).u32(0).u32(0).add("none").u16(0x40);
  out.u16(font.glyphs.begin()->first).u16(font.glyphs.rbegin()->first);
  out.s16(ascent).s16(descent).s16(0).s16(ascent).s16(-descent);
  out.u32(1).u32(0).s16(500).s16(700).u16(0).u16(' ');
  return out.u16(1).text;
}

// The names that a font has to have: all of them are the same.
std::string makeName() {
  constexpr int names[] = {1, 2, 4, 6};
  Bytes out;
  out.u16(0).u16(4).u16(6 + 4 * 12);
  for (const int name : names) out.u16(3).u16(1).u16(0x409).s16(name).u16(2).u16(0);
  return out.u16('f').text;
}

uint32_t checksum(const std::string& table) {
  uint32_t sum = 0;
  for (size_t i = 0; i < table.size(); ++i)
    sum += static_cast<uint32_t>(static_cast<uint8_t>(table[i])) << (24 - 8 * (i % 4));
  return sum;
}

std::string makeFile(const std::vector<std::pair<const char*, std::string>>& tables) {
  Bytes out;
  const auto count = static_cast<uint32_t>(tables.size());
  uint32_t offset = 12 + 16 * count, head = 0;
  out.add("OTTO").u16(count).u16(128).u16(3).u16(16 * count - 128);
  const auto padded = [](size_t size) { return static_cast<uint32_t>((size + 3) / 4 * 4); };
  for (const auto& [tag, table] : tables) {
    if (std::string_view(tag) == "head") head = offset;
    out.add(tag).u32(checksum(table)).u32(offset).u32(static_cast<uint32_t>(table.size()));
    offset += padded(table.size());
  }
  for (const auto& [tag, table] : tables)
    out.add(table).add(std::string(padded(table.size()) - table.size(), '\0'));
  out.text.replace(head + 8, 4, Bytes().u32(0xB1B0AFBA - checksum(out.text)).text);
  return out.text;
}

std::string makeOpenType(const Font& font) {
  std::vector<std::string> charStrings = {CharString({}).text()};  // the glyph of no character
  Bytes widths;
  widths.u16(0).u16(0);
  for (const auto& [character, glyph] : font.glyphs) {
    charStrings.push_back(glyph.outline);
    widths.u16(static_cast<uint32_t>(glyph.advance)).s16(glyph.left);
  }
  const size_t count = charStrings.size();
  return makeFile({{"CFF ", makeCff(charStrings)},
                   {"OS/2", makeOs2(font)},
                   {"cmap", makeCmap(font)},
                   {"head", makeHead(font)},
                   {"hhea", makeHhea(font, count)},
                   {"hmtx", widths.text},
                   {"maxp", Bytes().u32(0x5000).u16(static_cast<uint32_t>(count)).text},
                   {"name", makeName()},
                   {"post", Bytes().u32(0x30000).add(std::string(28, '\0')).text}});
}

}  // namespace

Font makeFont(const FontGlyphs& glyphs) {
  Font font;
  font.bounds.include(Point{0, 0});
  font.glyphs[u' '] = {CharString({}).text(), 250, 0};
  for (const auto& [character, shape] : glyphs) {
    Box box;
    for (const POINT p : shape->points)
      box.include(Point{static_cast<float>(p.x), static_cast<float>(p.y)});
    font.glyphs[character] = {CharString(*shape).text(), shape->advance,
                              box.empty() ? 0 : box.rounded().left};
    font.bounds.include(box);
  }
  return font;
}

std::string fontAddress(const Font& font) {
  return std::string(fontAddressStart) + base64(makeOpenType(font));
}

}  // namespace qz::pdf
