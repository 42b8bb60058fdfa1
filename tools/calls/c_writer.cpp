#include "c_writer.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <vector>

namespace qz::tools {
namespace {

constexpr std::size_t kLongestLiteral = 500;

bool isHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

std::string escaped(const char* form, unsigned value) {
  char text[16];
  std::snprintf(text, sizeof text, form, value);
  return text;
}

// One code unit or pair of a literal, or nothing when a literal cannot hold it.
std::string literalPiece(const SVG_Char* units, std::size_t count, std::size_t& i) {
  const auto unit = static_cast<char16_t>(units[i]);
  if (isHigh(unit) && i + 1 < count && isLow(static_cast<char16_t>(units[i + 1])))
    return escaped("\\U%08X", 0x10000u + ((unit & 0x3FFu) << 10) + (units[++i] & 0x3FFu));
  if (isHigh(unit) || isLow(unit)) return {};
  if (unit >= 0xA0) return escaped("\\u%04X", unit);
  const bool plain = unit >= ' ' && unit < 0x7F && unit != '"' && unit != '\\' && unit != '?';
  return plain ? std::string(1, static_cast<char>(unit)) : escaped("\\%03o", unit);
}

}  // namespace

std::string CWriter::literal(int64_t value) { return std::to_string(value); }

std::string CWriter::literal(int32_t value) {
  return value == std::numeric_limits<int32_t>::min() ? "INT32_MIN" : std::to_string(value);
}

void CWriter::item(std::string& list, const std::string& text) {
  if (!list.empty()) list += list.size() - (list.rfind('\n') + 1) > 90 ? ",\n" : ", ";
  list += text;
}

void CWriter::array(std::string_view type, std::string_view name, const std::string& list) {
  std::string unique(name);
  for (int i = 2; arrays_.find(" " + unique + "[]") != std::string::npos; ++i)
    unique = std::string(name) + std::to_string(i);
  arrays_ += "    static const " + std::string(type) + " " + unique + "[] = {" + list + "};\n";
  parameter(unique);
}

std::string CWriter::braced(std::initializer_list<int32_t> values) {
  std::string text;
  for (const int32_t value : values) text.append(text.empty() ? "{" : ", ").append(literal(value));
  return text += '}';
}

void CWriter::rectangle(const RECT& value) {
  parameter(std::string("&(const RECT)")
                .append(braced({value.left, value.top, value.right, value.bottom})));
}

void CWriter::point(const POINT& value) {
  parameter(std::string("&(const POINT)").append(braced({value.x, value.y})));
}

void CWriter::points(const POINT* points, std::size_t count) {
  if (count == 0) return parameter("NULL");
  std::string list;
  for (std::size_t i = 0; i < count; ++i) item(list, braced({points[i].x, points[i].y}));
  array("POINT", "points", list);
}

void CWriter::text(const SVG_Char* units, int64_t count) {
  textLength = static_cast<std::size_t>(std::max<int64_t>(count, 0));
  std::string text;
  bool isLiteral = textLength <= kLongestLiteral;
  for (std::size_t i = 0; isLiteral && i < textLength; ++i) {
    const std::string piece = literalPiece(units, textLength, i);
    isLiteral = !piece.empty();
    text += piece;
  }
  if (isLiteral) return parameter(std::string("UNITS(\"").append(text).append("\")"));
  std::vector<int32_t> values(units, units + textLength);
  numbers("SVG_Char", "text", values.data(), values.size());
}

void CWriter::unitBytes(const void* data, int64_t size, int64_t least) {
  const auto* bytes = static_cast<const uint8_t*>(data);
  const auto present = static_cast<std::size_t>(std::max({size, least, int64_t{0}}));
  numbers("uint8_t", "data", bytes, present);
}

void CWriter::picture(const uint8_t* data, int64_t size) {
  const auto present = static_cast<std::size_t>(std::max<int64_t>(size, 0));
  if (present == 0) return parameter("NULL");
  std::string& name = pictureNames_[std::string(data, data + present)];
  if (name.empty()) {
    name = "picture" + std::to_string(pictureNames_.size());
    std::string list;
    for (std::size_t i = 0; i < present; ++i) item(list, std::to_string(data[i]));
    pictures_ += "static const uint8_t " + name + "[] = {\n" + list + "};\n\n";
  }
  parameter(name);
}

std::string CWriter::takeStatement(std::string_view function) {
  std::string call(function);
  call.append("(page").append(parameters_).append(");\n");
  std::string statement("  ");
  if (arrays_.empty())
    statement.append(call);
  else
    statement.append("{\n").append(arrays_).append("    ").append(call).append("  }\n");
  parameters_.clear();
  arrays_.clear();
  return statement;
}

}  // namespace qz::tools
