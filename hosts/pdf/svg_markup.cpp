#include "svg_markup.h"

#include <array>
#include <cstdio>

namespace qz::pdf {
namespace {

constexpr std::string_view base64Letters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

POINT rounded(Point p) { return toUnits(p); }
POINT rounded(POINT p) { return p; }

template <class Points>
std::string figures(const Points& points, const std::vector<uint8_t>& types) {
  std::string data;
  POINT at = {0, 0};
  const auto add = [&](POINT p) {
    const int32_t x = p.x - at.x, y = p.y - at.y;
    if (x >= 0 && data.back() != 'm' && data.back() != 'l' && data.back() != 'c' &&
        data.back() != 'M')
      data += ' ';
    data += number(x);
    if (y >= 0) data += ' ';
    data += number(y);
  };
  POINT start = at;
  int last = 0;
  for (size_t i = 0; i < points.size(); ++i) {
    const int type = types[i] == PT_MOVETO ? PT_MOVETO : types[i] & ~PT_CLOSEFIGURE;
    const size_t count = type == PT_BEZIERTO ? 3 : 1;
    if (type != last || type == PT_MOVETO)
      data += type == PT_MOVETO ? (i == 0 ? 'M' : 'm') : type == PT_LINETO ? 'l' : 'c';
    POINT end = at;
    for (size_t k = 0; k < count && i + k < points.size(); ++k) add(end = rounded(points[i + k]));
    i += count - 1;
    at = end;
    last = type;
    if (type == PT_MOVETO) start = at;
    if (type != PT_MOVETO && i < types.size() && (types[i] & PT_CLOSEFIGURE) != 0) {
      data += 'z';
      at = start;
      last = 0;
    }
  }
  return data;
}

}  // namespace

std::string number(int32_t value) { return std::to_string(value); }

std::string number(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", static_cast<double>(value));
  return text;
}

std::string matrixText(const Matrix& m) {
  std::string text = "matrix(";
  for (const float value : {m.a, m.b, m.c, m.d, m.e}) text += number(value) + ' ';
  return text + number(m.f) + ')';
}

std::string pathData(const Path& path) { return figures(path.points, path.types); }

std::string pathData(const Outline& outline) { return figures(outline.points, outline.types); }

std::string boxPath(const Box& box) {
  const RECT r = box.rounded();
  return 'M' + number(r.left) + ' ' + number(r.top) + 'H' + number(r.right) + 'V' +
         number(r.bottom) + 'H' + number(r.left) + 'z';
}

std::string paintAttributes(const char* what, Colour c) {
  char text[80];
  std::snprintf(text, sizeof text, " %s=\"#%02x%02x%02x\"", what, c.red, c.green, c.blue);
  std::string result = text;
  if (c.alpha < 255)
    result +=
        ' ' + std::string(what) + "-opacity=\"" + number(static_cast<float>(c.alpha) / 255) + '"';
  return result;
}

std::string strokeAttributes(const Pen& pen, Colour colour) {
  std::string text = " fill=\"none\"" + paintAttributes("stroke", colour) + " stroke-width=\"" +
                     (pen.width < 0.5f ? "10" : number(pen.width)) + '"';
  if (pen.cap != Cap::kButt)
    text += pen.cap == Cap::kRound ? " stroke-linecap=\"round\"" : " stroke-linecap=\"square\"";
  if (pen.join != Join::kMitre)
    text += pen.join == Join::kRound ? " stroke-linejoin=\"round\"" : " stroke-linejoin=\"bevel\"";
  else if (pen.mitreLimit != 4)
    text += " stroke-miterlimit=\"" + number(std::max(1.0f, pen.mitreLimit)) + '"';
  for (int i = 0; i < pen.dashCount; ++i)
    text += (i == 0 ? " stroke-dasharray=\"" : " ") + number(pen.dashes[static_cast<size_t>(i)]);
  if (pen.dashCount > 0) text += '"';
  if (pen.dashCount > 0 && pen.dashPhase != 0)
    text += " stroke-dashoffset=\"" + number(pen.dashPhase) + '"';
  return text;
}

std::string base64(const std::string& bytes) {
  std::string text;
  text.reserve(bytes.size() / 3 * 4 + 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t group = 0;
    for (size_t k = 0; k < 3; ++k)
      group = group << 8 | (i + k < bytes.size() ? static_cast<uint8_t>(bytes[i + k]) : 0u);
    for (size_t k = 0; k < 4; ++k)
      text += i + k <= bytes.size() ? base64Letters[group >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

std::string fromBase64(std::string_view text) {
  static constexpr auto values = [] {
    std::array<uint8_t, 256> table;
    table.fill(64);
    for (uint8_t i = 0; i < 64; ++i) table[static_cast<uint8_t>(base64Letters[i])] = i;
    return table;
  }();
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  uint32_t bits = 0;
  int count = 0;
  for (const char letter : text) {
    const uint8_t value = values[static_cast<uint8_t>(letter)];
    if (value == 64) break;
    bits = bits << 6 | value;
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count);
  }
  return bytes;
}

}  // namespace qz::pdf
