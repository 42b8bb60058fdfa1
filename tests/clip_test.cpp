#include <sstream>

#include "page.h"

namespace qz::test {
namespace {

std::string clipPath(int number, const std::string& data, const char* rule = "") {
  return "<clipPath id='QZ_C" + std::to_string(number) + "'><path d='" + data + "'" + rule +
         "/></clipPath>";
}
const char* const kEvenOdd = " clip-rule='evenodd'";

std::string clipped(int number, const std::string& content) {
  return "<g clip-path='url(#QZ_C" + std::to_string(number) + ")'>" + content + "</g>";
}

// Each row draws under a region that is made of words and rectangles.
TEST(Clip, RectanglesBecomeOnePath) {
  const struct {
    const char *rule, *region, *data, *fillRule = "";
  } cases[] = {
      {"a single one", "begin 0 0 100 100", "M0 0h100v100h-100z"},
      {"added ones are not merged", "begin 0 0 10 5 add 2 1 4 3", "M0 0h10v5h-10zM2 1h2v2h-2z",
       kEvenOdd},
      {"a cut is the part inside each kept rectangle",
       "begin 0 0 20 20 add 30 0 50 20 cut 10 10 40 11 cut 15 -5 16 99",
       "M0 0h20v20h-20zM30 0h20v20h-20zM10 10h10v1h-10zM15 0h1v20h-1zM30 10h10v1h-10z", kEvenOdd},
      {"a cut that touches from outside, or is empty, adds nothing",
       "begin 0 0 20 20 cut 20 0 30 20 cut -9 0 0 20 cut 0 -9 20 0 cut 0 20 20 29 "
       "cut 5 5 5 9 cut 5 9 9 9 cut 9 4 5 9",
       "M0 0h20v20h-20z"},
      {"a cut around an earlier one replaces it", "begin 0 0 100 100 cut 10 10 20 20 cut 5 5 20 30",
       "M0 0h100v100h-100zM5 5h15v25h-15z", kEvenOdd},
      {"around several it replaces each, and the copies cancel out",
       "begin 0 0 100 50 cut 0 0 5 5 cut 10 0 15 5 cut 90 0 95 5 cut 0 0 20 10",
       "M0 0h100v50h-100zM0 0h20v10h-20zM0 0h20v10h-20zM90 0h5v5h-5z", kEvenOdd},
      {"no width", "begin 0 0 0 5", "M0 0v0v5v0z"},
      {"no height", "begin 0 0 10 0", "M0 0h10v0h-10z"},
      {"reversed", "begin 10 5 5 -5 cut 6 0 7 1", "M10 5h-5v-10h5z"},
      {"too wide for 32 bits counts as reversed", "begin -2147483648 0 2147483647 10 cut 1 1 2 2",
       "M-2147483648 0h-1v10h1z"},
  };
  for (const auto& [rule, region, data, fillRule] : cases) {
    Page page;
    std::istringstream words(region);
    int number = -1;
    RECT rectangle;
    for (std::string word;
         words >> word >> rectangle.left >> rectangle.top >> rectangle.right >> rectangle.bottom;
         ++number)
      page(word == "begin" ? SVG_BeginClippingRegion
           : word == "add" ? SVG_AddClippingRegion
                           : SVG_ExcludeClippingRegion,
           &rectangle);
    EXPECT_EQ(number, SVG_GetCurrentClippingRegion(page.generator)) << rule;
    EXPECT_SAME(document(markup(clipped(number, kLine)), markup(clipPath(number, data, fillRule))),
                page.line().close())
        << rule;
  }
}

// Each goes on from the one before; what is kept stands before all cuts, and one that is drawn
// under again is not defined again.
TEST(Clip, RegionsOfASeriesEachHaveTheirPath) {
  const char* const data[] = {
      "M0 0h9v9h-9z",
      "M0 0h9v9h-9zM20 0h9v9h-9z",
      "M0 0h9v9h-9zM20 0h9v9h-9zM5 1h4v1h-4zM20 1h5v1h-5z",
      "M0 0h9v9h-9zM20 0h9v9h-9zM5 1h4v1h-4zM0 3h9v1h-9zM20 1h5v1h-5zM20 3h9v1h-9z",
      "M0 0h9v9h-9zM20 0h9v9h-9zM0 0h1v1h-1zM5 1h4v1h-4zM0 3h9v1h-9zM20 1h5v1h-5zM20 3h9v1h-9z",
      "M0 0h9v9h-9z",
      "M0 0h9v9h-9zM5 1h4v1h-4z",
      "M0 0h9v9h-9zM5 1h4v1h-4zM0 3h9v1h-9z",
      "M0 0h9v9h-9zM20 0h9v9h-9zM5 1h4v1h-4zM0 3h9v1h-9zM20 1h5v1h-5zM20 3h9v1h-9z"};
  const RECT first = {0, 0, 9, 9}, second = {20, 0, 29, 9}, cut = {5, 1, 25, 2},
             other = {0, 3, 29, 4}, third = {0, 0, 1, 1};
  Page page;
  page.clip(first).line()(SVG_AddClippingRegion, &second).line();
  page(SVG_ExcludeClippingRegion, &cut).line()(SVG_ExcludeClippingRegion, &other).line();
  page(SVG_AddClippingRegion, &third).line().clip(first).line();
  page(SVG_ExcludeClippingRegion, &cut).line()(SVG_ExcludeClippingRegion, &other).line();
  page(SVG_AddClippingRegion, &second).line()(SVG_SetCurrentClippingRegion, 2).line();
  std::string content, definitions;
  for (int i = 0; i < 9; ++i) {
    content += clipped(i, kLine);
    definitions += clipPath(i, data[i], i % 5 == 0 ? "" : kEvenOdd);
  }
  EXPECT_SAME(markup(document(content + clipped(2, kLine), definitions)), page.close());
}

TEST(Clip, NumbersSelectRegionsAgain) {
  Page page({10, 20, 110, 70});
  SvgGenerator* const generator = page.generator;
  page(SVG_AddClippingRegion, box({0, 0, 1, 1}));
  EXPECT_EQ(-1, SVG_GetCurrentClippingRegion(generator));
  page(SVG_ExcludeClippingRegion, box({20, 20, 30, 30}));  // from the page's rectangle
  EXPECT_EQ(1, SVG_GetCurrentClippingRegion(generator));
  page.line()(SVG_ExcludeClippingRegion, box({20, 20, 30, 30}));  // inside a cut: clipping ends
  EXPECT_EQ(-1, SVG_GetCurrentClippingRegion(generator));
  EXPECT_EQ(0, SVG_SetCurrentClippingRegion(page.line().generator, 1));
  page.line()(SVG_EndClippingRegion).line();
  EXPECT_EQ(0, SVG_SetCurrentClippingRegion(generator, 0));
  page(SVG_AddClippingRegion, box({0, 0, 1, 1})).line();
  EXPECT_EQ(0, SVG_SetCurrentClippingRegion(generator, 1));
  page(SVG_AddClippingRegion, box({0, 0, 1, 1})).line();
  EXPECT_EQ(0, SVG_SetCurrentClippingRegion(generator, 1));
  for (const uint32_t unknown : {4u, 0x80000000u, 0xFFFFFFFFu})
    EXPECT_EQ(1, SVG_SetCurrentClippingRegion(generator, unknown));
  page(SVG_ExcludeClippingRegion, box({40, 40, 50, 50})).line();
  EXPECT_EQ(4, SVG_GetCurrentClippingRegion(generator));
  const std::string base = "M10 20h100v50h-100z";
  EXPECT_SAME(document(markup(clipped(1, kLine) + kLine + clipped(1, kLine) + kLine +
                              clipped(2, kLine) + clipped(3, kLine) + clipped(4, kLine)),
                       markup(clipPath(1, base + "M20 20h10v10h-10z", kEvenOdd) +
                              clipPath(2, base + "M0 0h1v1h-1z", kEvenOdd) +
                              clipPath(3, base + "M0 0h1v1h-1zM20 20h10v10h-10z", kEvenOdd) +
                              clipPath(4, base + "M20 20h10v10h-10zM40 40h10v10h-10z", kEvenOdd))),
              page.close());
}

TEST(Clip, NeighboursShareAGroupAndEveryElementMarksItsRegion) {
  const std::string first = clipPath(0, "M0 0h1v1h-1z"), second = clipPath(1, "M0 0h2v2h-2z");
  check({
      {"a run of elements under one region",
       [](Page& page) {
         page.clip({0, 0, 1, 1}).line().line().clip({0, 0, 2, 2}).line();
       },
       clipped(0, kLine + kLine) + clipped(1, kLine), first + second},
      {"text, pictures, targets and character blocks",
       [](Page& page) {
         page.clip({0, 0, 1, 1}).text(u"a").clip({0, 0, 2, 2}).image(9, {0, 0, 1, 1}, "?");
         page.clip({0, 0, 1, 1}).target({1, 2}).clip({0, 0, 2, 2})(SVG_BeginCharacterBlock);
       },
       clipped(0, "<text x='1' y='2' xml:space='preserve'>a</text>") +
           clipped(1, "<use xlink:href='#QZ_I0' x='0' y='0' width='1' height='1'/>") +
           clipped(2, "<velumark:target purpose='DocumentTarget' name='' position='1 2'/>") +
           clipped(3, "<g></g>"),
       first + second + clipPath(2, "M0 0h1v1h-1z") + clipPath(3, "M0 0h2v2h-2z")},
      {"a group's children mark their region but are not cut",
       [](Page& page) {
         page.clip({0, 0, 1, 1}).link().clip({0, 0, 2, 2}).line();
       },
       clipped(0, kLink + kLine + "</a>"), first + second},
      {"outlines in a block and inverted rectangles mark none",
       [](Page& page) {
         page(SVG_BeginCharacterBlock)(SVG_BeginCharacter, at({0, 0})).clip({0, 0, 1, 1}).line();
         page(SVG_InvertRectangle, box({0, 0, 1, 1}));
       },
       "<g id='QZ_x'><g><line id='QZ_0_0' x1='1' y1='2' x2='3' y2='4'/></g></g>"
       "<g filter='url(#QZ_V0)'><use xlink:href='#QZ_x'/></g>",
       "<filter id='QZ_V0' filterUnits='userSpaceOnUse' x='0' y='0' width='1' height='1'>" +
           kMatrix},
      {"a region whose records are those of a used one is not used itself",
       [](Page& page) {
         page.clip({0, 0, 9, 9})(SVG_ExcludeClippingRegion, box({1, 1, 2, 2})).line();
         page(SVG_ExcludeClippingRegion, box({0, 0, 3, 3}));
       },
       clipped(1, kLine), clipPath(1, "M0 0h9v9h-9zM1 1h1v1h-1z", kEvenOdd)},
      {"what is refused marks none",
       [](Page& page) {
         page.clip({0, 0, 1, 1}).text(u"").polyline({}).image(4, {0, 0, 1, 1}, "", 90);
         page.image(8, {0, 0, 1, 1}, "<svg></svg>", 90);
         page.image(4, {0, 0, 1, 1}, "\4\32\0\23\35\30\3"s, 90);  // its hash is the reserved one
       },
       ""},
  });
}

}  // namespace
}  // namespace qz::test
