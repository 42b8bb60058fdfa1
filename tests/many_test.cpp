// Many of one kind, and what makes two of a kind the same: neither the look-ups nor the shortcuts
// before them may change a document.
#include <numeric>

#include "page.h"

namespace qz::test {
namespace {

// The template once for each number: "@" is the number, "^" the base64 text of bytesOf() it.
std::string numbered(const std::string& text, const std::vector<int>& numbers) {
  std::string result;
  for (const int number : numbers)
    for (const char character : text) {
      if (character == '@')
        result += std::to_string(number);
      else if (character == '^')
        for (const char digit : std::to_string(number))
          result.append("AAA").push_back(static_cast<char>(digit - '0' + 'A'));
      else
        result.push_back(character);
    }
  return result;
}

// Three bytes a digit. No two numbers have one 32-bit hash.
std::string bytesOf(int number) {
  std::string bytes;
  for (const char digit : std::to_string(number))
    bytes += {'\0', '\0', static_cast<char>(digit - '0')};
  return bytes;
}

std::string svg(const std::string& inside, const std::string& viewBox = "0") {
  return "<svg viewBox='" + viewBox + "'>" + inside + "</svg>";
}

std::string symbol(int number, int content, const std::string& box = "0") {
  return numbered("<symbol id='QZ_S@' width='1' height='1' viewBox='" + box + "'>", {number}) +
         numbered("<use xlink:href='#QZ_G@'/></symbol>", {content});
}

Page& outline(Page& page, const std::vector<TypedPoint>& path) {
  return page(SVG_BeginCharacter, at({1, 1})).path(path);
}

const std::string kTarget = "<velumark:target purpose='DocumentTarget' name='' position='0 0'/>";
const std::string kUse = "<use xlink:href='#QZ_S@' transform='translate(0 0)'/>";

// Beyond 16 bits, and 1,600 of them drawn again twice, the last first.
TEST(Many, EachIsFoundAgain) {
  std::vector<int> all(66000), again(1500);
  std::iota(all.begin(), all.end(), 0);
  std::iota(again.rbegin(), again.rend(), 0);
  again.insert(again.begin(), all.rbegin(), all.rbegin() + 100);

  const struct {
    const char* kind;
    void (*draw)(Page&, int number);  // behind a block that is open, but for outlines
    std::string first;
    std::vector<std::string> definitions;
    std::string later = first, start = "<g></g>", end = {};
  } cases[] = {
      {"fonts",
       [](Page& page, int i) { page.font(u"A", i).text(u"a"); },
       "<text x='1' y='2' class='QZ_fnt@' xml:space='preserve'>a</text>",
       {"<style>", ".QZ_fnt@{font:@px A;}", "</style>"}},
      {"pictures",
       [](Page& page, int i) {
         page.image(4, {0, 0, 1, 1}, bytesOf(i));
       },
       "<use xlink:href='#QZ_I@' x='0' y='0' width='1' height='1'/>",
       {"<symbol id='QZ_I@' viewBox='0 0 1 1'><image width='1' height='1' "
        "xlink:href='data:image/png;base64,^'/></symbol>"}},
      {"SVG pictures",
       [](Page& page, int i) {
         page.image(8, {0, 0, 1, 1}, svg(std::to_string(i)));
       },
       kUse,
       {"<g id='QZ_G@'><g  >@</g></g>",
        "<symbol id='QZ_S@' width='1' height='1' viewBox='0'><use xlink:href='#QZ_G@'/></symbol>"}},
      {"sizes of one SVG picture",
       [](Page& page, int i) {
         page.image(8, {0, 0, i, 1}, svg("X"));
       },
       kUse,
       {"<g id='QZ_G0'><g  >X</g></g>",
        "<symbol id='QZ_S@' width='@' height='1' viewBox='0'><use xlink:href='#QZ_G0'/></symbol>"}},
      {"outlines",
       [](Page& page, int i) {
         outline(page, {{6, i, 0}});
       },
       "<path id='QZ_0_@' d='M@ 0'/>",
       {},
       "<use xlink:href='#QZ_0_@'/>",
       "<g>",
       "</g>"},
      {"clip regions",
       [](Page& page, int i) {
         if (SVG_SetCurrentClippingRegion(page.generator, static_cast<uint32_t>(i)) != 0)
           page.clip({0, i, 1, i + 1});
         page.target({})(SVG_EndClippingRegion).target({});
       },
       "<g clip-path='url(#QZ_C@)'>" + kTarget + "</g>" + kTarget,
       {"<clipPath id='QZ_C@'><path d='M0 @h1v1h-1z'/></clipPath>"}},
  };
  for (const auto& [kind, draw, first, definitions, later, start, end] : cases) {
    Page page;
    page(SVG_BeginCharacterBlock);
    for (const int i : all) draw(page, i);
    for (int times = 0; times < 2; ++times)
      for (const int i : again) draw(page, i);
    std::string defined;
    for (const std::string& each : definitions)
      defined += each.find('@') == each.npos ? each : numbered(each, all);
    const std::string repeated = numbered(later, again);
    EXPECT_SAME(markup(document(start + numbered(first, all) + repeated + repeated + end, defined)),
                page.close())
        << kind;
  }

  Page page;
  for (const int i : all) page(SVG_InvertRectangle, box({i, 0, i + 1, 1}));
  EXPECT_SAME(markup(document(
                  "<g id='QZ_x'></g>" +
                      numbered("<g filter='url(#QZ_V@)'><use xlink:href='#QZ_x'/></g>", all),
                  numbered("<filter id='QZ_V@' filterUnits='userSpaceOnUse' x='@' y='0' width='1' "
                           "height='1'>" +
                               kMatrix,
                           all))),
              page.close())
      << "inverted rectangles";
}

// Each in turn, again in reverse, and three times in a row.
std::vector<int> turns(int count) {
  std::vector<int> result(2 * static_cast<size_t>(count));
  std::iota(result.begin(), result.begin() + count, 0);
  std::iota(result.rbegin(), result.rbegin() + count, 0);
  for (int i = 0; i < count; ++i) result.insert(result.end(), 3, i);
  return result;
}

TEST(Many, PicturesThatDifferInOneByte) {
  const char* const pictures[] = {"abcdefgh", "abcdefgi", "abcdefg", "bbcdefgh"};
  const char* const base64[] = {"YWJjZGVmZ2g=", "YWJjZGVmZ2k=", "YWJjZGVmZw==", "YmJjZGVmZ2g="};
  Page rasters, drawings;
  std::string images, contents, sizings;
  for (const int i : turns(4)) {
    rasters.image(4, {0, 0, 1, 1}, pictures[i]);
    drawings.image(8, {0, 0, 1, 1}, svg(pictures[i]));
  }
  for (int i = 0; i < 4; ++i) {
    images += numbered(
                  "<symbol id='QZ_I@' viewBox='0 0 1 1'><image width='1' height='1' "
                  "xlink:href='data:image/png;base64,",
                  {i}) +
              base64[i] + "'/></symbol>";
    contents += numbered("<g id='QZ_G@'><g  >", {i}) + pictures[i] + "</g></g>";
    sizings += symbol(i, i);
  }
  const char* const use = "<use xlink:href='#QZ_I@' x='0' y='0' width='1' height='1'/>";
  EXPECT_SAME(markup(document(numbered(use, turns(4)), images)), rasters.close());
  EXPECT_SAME(markup(document(numbered(kUse, turns(4)), contents + sizings)), drawings.close());
}

// Nine points are more than two steps of the hash of points.
TEST(Many, OutlinesThatDifferInOneCoordinateOrType) {
  std::vector<std::vector<TypedPoint>> outlines = {std::vector<TypedPoint>(9, {2, 3, 4})};
  outlines[0][0].type = 6;
  for (size_t i = 0; i < outlines[0].size(); ++i)
    for (int32_t TypedPoint::*coordinate : {&TypedPoint::x, &TypedPoint::y}) {
      outlines.push_back(outlines[0]);
      outlines.back()[i].*coordinate += 1 << i;
    }
  for (size_t i = 1; i < outlines[0].size(); ++i) {
    outlines.push_back(outlines[0]);
    outlines.back()[i].type = 3;
    outlines.emplace_back(outlines[0].begin(), outlines[0].end() - static_cast<ptrdiff_t>(i));
  }
  const int count = static_cast<int>(outlines.size());
  Page page;
  page(SVG_BeginCharacterBlock);
  std::string content = "<g>";
  for (int i = 0; i < count; ++i) {
    const std::string alone = Page().path(outlines[static_cast<size_t>(i)]).close();
    const size_t data = alone.find(" d=");  // to the end of the path
    content += numbered("<path id=\"QZ_0_@\"", {i}) + alone.substr(data, alone.size() - data - 6);
  }
  std::vector<int> order = turns(count);
  for (const int i : order) outline(page, outlines[static_cast<size_t>(i)]);
  order.erase(order.begin(), order.begin() + count);
  content += numbered("<use xlink:href='#QZ_0_@'/>", order) + "</g>";
  EXPECT_SAME(markup(document(content)), markup(page.close()));
}

TEST(Many, WhatMakesTwoTheSame) {
  check({
      {"contents of one 32-bit hash share the first",
       [](Page& page) {
         for (const char* inside : {"mc50", "pbha"}) page.image(8, {0, 0, 1, 1}, svg(inside));
       },
       numbered(kUse, {0, 0}), "<g id='QZ_G0'><g  >mc50</g></g>" + symbol(0, 0)},
      {"one text, be it stored in bytes or in units",
       [](Page& page) {
         std::string units;
         for (const char character : svg("X")) units += {character, '\0'};
         for (const std::string& bytes : {svg("X"), units}) page.image(8, {0, 0, 1, 1}, bytes);
       },
       numbered(kUse, {0, 0}), "<g id='QZ_G0'><g  >X</g></g>" + symbol(0, 0)},
      {"what stands in the root is not what stands inside",
       [](Page& page) {
         for (const char* picture : {"<svg viewBox='0' a>b</svg>", "<svg viewBox='0' ab></svg>",
                                     "<svg viewBox='0' c>b</svg>"})
           page.image(8, {0, 0, 1, 1}, picture);
       },
       numbered(kUse, {0, 1, 2}),
       "<g id='QZ_G0'><g  a>b</g></g><g id='QZ_G1'><g  ab></g></g><g id='QZ_G2'><g  c>b</g></g>" +
           symbol(0, 0) + symbol(1, 1) + symbol(2, 2)},
      {"view boxes that differ in the high or the low byte of a unit, or in width",
       [](Page& page) {
         for (const char* box : {"\xE4\xB8\xAD", "\xE4\xBC\xAD", "\xE4\xB8\xAE", "-"})
           page.image(8, {0, 0, 1, 1}, svg("X", box));
       },
       numbered(kUse, {0, 1, 2, 3}),
       "<g id='QZ_G0'><g  >X</g></g>" + symbol(0, 0, "\\u4e2d") + symbol(1, 0, "\\u4f2d") +
           symbol(2, 0, "\\u4e2e") + symbol(3, 0, "-")},
      {"fonts likewise",
       [](Page& page) {
         for (const char16_t* family : {u"\u4e2d", u"\u4f2d", u"\u4e2e", u"-"})
           page.font(family, 1).text(u"a");
       },
       numbered("<text x='1' y='2' class='QZ_fnt@' xml:space='preserve'>a</text>", {0, 1, 2, 3}),
       "<style>.QZ_fnt0{font:1px \\u4e2d;}.QZ_fnt1{font:1px \\u4f2d;}.QZ_fnt2{font:1px \\u4e2e;}"
       ".QZ_fnt3{font:1px -;}</style>"},
  });
}

}  // namespace
}  // namespace qz::test
