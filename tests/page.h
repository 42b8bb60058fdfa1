// A page drawn through the C interface, and tables of such pages with the markup they must give.
#pragma once

#if defined(_WIN32)
#if !defined(NOMINMAX)  // the standard library of MinGW defines it
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

#include <gtest/gtest.h>
#include <qzsvggen/qzsvggen.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace qz::test {

using namespace std::string_literals;

constexpr int32_t kMost = INT32_MAX, kLeast = INT32_MIN;

struct TypedPoint {
  uint8_t type;
  int32_t x, y;
};

// Markup as the tests write it, with apostrophes for quotation marks.
inline std::string markup(std::string text) {
  std::replace(text.begin(), text.end(), '\'', '"');
  return text;
}

inline const std::string kLine = "<line x1='1' y1='2' x2='3' y2='4'/>";
inline const std::string kLink =
    "<a velumark:purpose='HypertextLink' velumark:targetName='' xlink:href=''>";
inline const std::string kMatrix =
    "<feColorMatrix values='-1 0 0 0 1 0-1 0 0 1 0 0-1 0 1 0 0 0 1 0'/></filter>";

// The argument for the duration of one call.
inline const POINT* at(const POINT& point) { return &point; }
inline const RECT* box(const RECT& rectangle) { return &rectangle; }

// Exactly the units of a literal, without a terminator, so that reading too far is noticed.
inline std::vector<SVG_Char> units(std::u16string_view text) { return {text.begin(), text.end()}; }

// ASCII as it is, every other unit (and every control character but TAB) as \uXXXX.
inline std::string readable(const std::vector<SVG_Char>& text) {
  std::string result;
  for (const SVG_Char unit : text) {
    if ((unit >= 0x20 && unit < 0x7F) || unit == u'\t') {
      result.push_back(static_cast<char>(unit));
      continue;
    }
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(unit));
    result += escape;
  }
  return result;
}

// Shows where two texts part, with what stands around it.
inline testing::AssertionResult sameText(const char*, const char*, const std::string& expected,
                                         const std::string& actual) {
  if (expected == actual) return testing::AssertionSuccess();
  const size_t shorter = std::min(expected.size(), actual.size());
  size_t offset = 0;
  while (offset < shorter && expected[offset] == actual[offset]) ++offset;
  const size_t start = offset - std::min<size_t>(offset, 50);
  testing::AssertionResult result = testing::AssertionFailure()
                                    << "different from character " << offset << " on";
  for (const std::string* text : {&expected, &actual})
    result << (text == &expected ? "\n  expected: [" : "\n  actual:   [")
           << text->substr(start, offset - start) << "] " << text->substr(offset, 50);
  return result;
}
#define EXPECT_SAME(expected, actual) EXPECT_PRED_FORMAT2(::qz::test::sameText, expected, actual)

// Arguments live on the heap in their exact size and die with the call that they are for.
struct Page {
  explicit Page(const RECT& page = {0, 0, 100, 50}) : generator(SVG_Create(&page)) {}
  ~Page() { SVG_Delete(generator); }
  Page(const Page&) = delete;

  // Calls one of the functions that return 0 whatever happens.
  template <class... Parameters, class... Arguments>
  Page& operator()(int32_t (*function)(SvgGenerator*, Parameters...), Arguments... arguments) {
    EXPECT_EQ(0, function(generator, static_cast<Parameters>(arguments)...));
    return *this;
  }

  Page& line() { return (*this)(SVG_DrawLine, at({1, 2}), at({3, 4})); }
  Page& clip(const RECT& rectangle) { return (*this)(SVG_BeginClippingRegion, &rectangle); }
  Page& polyline(std::vector<POINT> points) {
    return (*this)(SVG_DrawPolyline, points.data(), points.size());
  }
  Page& path(const std::vector<TypedPoint>& path, decltype(&SVG_DrawPath) draw = SVG_DrawPath) {
    std::vector<POINT> points;
    std::vector<uint8_t> types;
    for (const auto& [type, x, y] : path) points.push_back({x, y}), types.push_back(type);
    return (*this)(draw, points.data(), types.data(), path.size());
  }
  Page& font(std::u16string_view family, int size, bool italic = false, bool bold = false) {
    return (*this)(SVG_SetFont, units(family).data(), family.size(), size, italic, bold);
  }
  Page& text(std::u16string_view text, POINT origin = {1, 2},
             const std::vector<int32_t>& advances = {}, uint32_t scaling = 100) {
    return (*this)(SVG_DrawText, units(text).data(), text.size(), &origin,
                   advances.empty() ? nullptr : advances.data(), scaling);
  }
  Page& image(int format, const RECT& bounds, const std::string& file, int quality = 100) {
    const std::vector<uint8_t> bytes(file.begin(), file.end());
    return (*this)(SVG_DrawImage, format, &bounds, bytes.data(), bytes.size(), quality);
  }
  Page& link(int type = 0, std::u16string_view target = {}) {
    return (*this)(SVG_BeginLink, type, units(target).data(), target.size());
  }
  Page& target(POINT position, std::u16string_view name = {}) {
    return (*this)(SVG_SetDocumentTarget, &position, units(name).data(), name.size());
  }

  std::string close() {  // returns the whole document
    const int32_t size = SVG_Close(generator, nullptr, 0);
    if (size <= 0) return ADD_FAILURE() << "no document: " << size, "";
    std::vector<SVG_Char> buffer(static_cast<size_t>(size), u'~');
    (*this)(SVG_Close, buffer.data(), size);
    EXPECT_EQ(0, buffer.back());
    buffer.pop_back();
    return readable(buffer);
  }

  SvgGenerator* const generator;
};

// The document with these parts; the extension namespace is declared when a part uses it.
inline std::string document(const std::string& content, const std::string& definitions = "",
                            const std::string& size = "width='100' height='50'") {
  const bool extended = content.find("velumark:") != std::string::npos;
  return markup(
             "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink'"s +
             (extended ? " xmlns:velumark='urn:velumark:svg:1' " : " ") + size + "><defs>") +
         definitions + "</defs>" + content + "</svg>";
}

struct Case {
  const char* rule;
  void (*draw)(Page&);
  std::string content, definitions = {};
};

inline void check(const std::vector<Case>& cases) {
  for (const Case& each : cases) {
    Page page;
    each.draw(page);
    EXPECT_SAME(document(markup(each.content), markup(each.definitions)), page.close())
        << each.rule;
  }
}

}  // namespace qz::test
