#include "page.h"

namespace qz::test {
namespace {

TEST(Paint, BlackFillAndFullOpacityAreLeftOutBlackStrokeIsNot) {
  const struct {
    uint8_t fill[4], stroke[4];
    uint32_t width;
    const char* attributes;
  } cases[] = {
      {{255, 0, 0, 0}, {255, 0, 0, 0}, 0, ""},
      {{255, 255, 0, 128}, {0, 9, 9, 9}, 5, " fill='rgb(255,0,128)'"},
      {{0, 9, 9, 9}, {}, 0, " fill='none'"},
      {{128, 0, 0, 0}, {}, 0, " fill-opacity='0.501961'"},
      {{1, 0, 0, 1}, {}, 0, " fill='rgb(0,0,1)' fill-opacity='0.003922'"},
      {{254, 0, 0, 0},
       {255, 0, 0, 0},
       3,
       " fill-opacity='0.996078' stroke='rgb(0,0,0)' stroke-width='3'"},
      {{255, 0, 0, 0},
       {1, 10, 20, 30},
       4294967295,
       " stroke='rgb(10,20,30)' stroke-opacity='0.003922' stroke-width='4294967295'"},
      // A fill's opacity is divided in single precision, a stroke's in double.
      {{80, 0, 1, 0},
       {80, 0, 0, 0},
       1,
       " fill='rgb(0,1,0)' fill-opacity='0.313726' "
       "stroke='rgb(0,0,0)' stroke-opacity='0.313725' stroke-width='1'"},
  };
  for (const auto& [fill, stroke, width, attributes] : cases) {
    Page page;
    page(SVG_SetFill, fill[0], fill[1], fill[2], fill[3]);
    page(SVG_SetStroke, stroke[0], stroke[1], stroke[2], stroke[3], width).polyline({{5, 7}});
    EXPECT_SAME(document(markup("<polyline"s + attributes + " points='5 7'/>")), page.close())
        << attributes;
  }
}

TEST(PathData, TypesBecomeRelativeCommands) {
  const struct {
    const char* rule;
    std::vector<TypedPoint> path;
    const char* data;
  } cases[] = {
      {"no points", {}, ""},
      {"one l for a run of lines, no blank before a negative number",
       {{6, 10, 10}, {2, 20, 10}, {2, 20, 30}, {3, 10, 10}},
       "M10 10l10 0 0 20-10-20z"},
      {"a later move is relative to the move before it",
       {{6, 10, 10}, {2, 20, 10}, {6, 30, 5}, {6, 0, 0}, {2, 1, 1}},
       "M10 10l10 0m20-5m-30-5l1 1"},
      {"without a move there is no M", {{2, 5, -7}, {2, 4, 0}}, "l5-7-1 7"},
      {"a late first move still goes in front",
       {{2, 5, 7}, {6, 10, 20}, {2, 11, 21}},
       "M10 20l5 7l1 1"},
      {"three curve points share one reference",
       {{6, 10, 10}, {4, 11, 12}, {4, 13, 10}, {4, 15, 15}, {4, 16, 16}, {4, 14, 14}, {4, 20, 20}},
       "M10 10c1 2 3 0 5 5 1 1-1-1 5 5"},
      {"lines and curves alternate",
       {{6, 0, 0}, {4, 1, 1}, {4, 2, 2}, {5, 3, 3}, {2, 4, 5}, {4, 5, 6}},
       "M0 0c1 1 2 2 3 3zl1 2c1 1"},
      {"an unfinished curve", {{6, 0, 0}, {4, 1, 1}, {2, 5, 5}, {4, 6, 6}}, "M0 0c1 1l5 5c1 1"},
      {"a z does not end a run",
       {{6, 0, 0}, {2, 5, 0}, {3, 5, 5}, {2, 8, -2}, {2, 7, -2}},
       "M0 0l5 0 0 5z 3-7-1 0"},
      {"type 1 is a bare z that moves the reference",
       {{6, 0, 0}, {2, 5, 0}, {1, 3, 3}, {2, 4, 4}},
       "M0 0l5 0z 1 1"},
      {"other types write nothing but move the reference",
       {{6, 0, 0}, {0, 9, 9}, {2, 10, 11}, {7, 20, 20}, {255, 30, 30}, {2, 31, 31}},
       "M0 0l1 2 1 1"},
      {"within a curve they count as curve points",
       {{6, 0, 0}, {4, 1, 1}, {0, 2, 2}, {7, 3, 3}, {4, 4, 5}},
       "M0 0c1 1 1 2"},
      {"differences wrap",
       {{6, kMost, kLeast}, {2, kLeast, kMost}, {6, 0, 0}},
       "M2147483647-2147483648l1-1m-2147483647-2147483648"},
  };
  for (const auto& [rule, path, data] : cases)
    EXPECT_SAME(document("<path d=\""s + data + "\"/>"), Page().path(path).close()) << rule;
}

TEST(Shapes, MarkupOfEachKind) {
  check({
      {"a line, with what was set when it was drawn",
       [](Page& page) {
         page.line()(SVG_SetStroke, 255, 1, 2, 3, 4)(SVG_SetFill, 0, 0, 0, 0);
         page(SVG_DrawLine, at({-10, 20}), at({30, -40}))(SVG_ClearStroke);
         page(SVG_DrawRectangle, box({1, 2, 4, 6}));
       },
       kLine + "<line fill='none' stroke='rgb(1,2,3)' stroke-width='4' x1='-10' y1='20' x2='30' "
               "y2='-40'/><path fill='none' d='M1 2h3v4h-3z'/>"},
      {"point lists have a blank between pairs whatever their sign",
       [](Page& page) {
         page.polyline({{0, 0}, {10, -5}, {-20, 5}, {-3, -4}});
       },
       "<polyline points='0 0 10-5 -20 5 -3-4'/>"},
      {"a polygon; without points there is no element",
       [](Page& page) {
         page(SVG_DrawPolygon, at({5, 7}), 1).polyline({});
       },
       "<polygon points='5 7'/>"},
  });
}

// A plain rectangle is displaced by half the stroke, even an invisible one; a rounded one is inset.
TEST(Shapes, RectanglesArePaths) {
  const char* const round =
      "M10 0h80a10 5 0 0 1 10-5v40a10 5 0 0 1 10 5h-80a10 5 0 0 1 -10 5v-40a10 5 0 0 1 -10-5z";
  const struct {
    uint32_t stroke;
    RECT box;
    const char* data;
    uint32_t width = 0, height = 0;
    int mask = 0;
  } cases[] = {
      {1, {10, 20, 40, 60}, "M10 20h30v40h-30z"},
      {5, {10, -20, 40, 20}, "M12-18h30v40h-30z"},
      {0, {5, 40, 3, 0}, "M5 40h4294967294v-40h-4294967294z"},  // the width is unsigned
      {4294967295, {1, 0, 3, 4}, "M-2147483648 2147483647h2v4h-2z"},
      {0, {-kMost, -kMost, kMost, kMost}, "M-2147483647-2147483647h4294967294v-2h-4294967294z"},
      {4, {0, 0, 100, 50}, "M2 2h100v50h-100z", 20, 10, 0},
      {4, {0, 0, 100, 50}, "M2 2h96v46h-96v-46z", 20, 10, 16},
      {0, {0, 0, 100, 50}, round, 20, 10, 15},  // any of the four low bits rounds all corners
      {0, {0, 0, 100, 50}, round, 20, 10, 1},
      {0, {0, 0, 100, 50}, round, 20, 10, 2},
      {0, {0, 0, 100, 50}, round, 20, 10, 0x8004},
      {0, {0, 0, 100, 50}, round, 20, 10, 8},
      {5,
       {10, -20, 110, 30},
       "M22-18h75a10 5 0 0 1 10-5v35a10 5 0 0 1 10 5h-75a10 5 0 0 1 -10 5"
       "v-35a10 5 0 0 1 -10-5z",
       21,
       11,
       15},
      {0,
       {0, 0, 100, 50},
       "M0 0h100a0 0 0 0 1 0 0v50a0 0 0 0 1 0 0h-100a0 0 0 0 1 0 0"
       "v-50a0 0 0 0 1 0 0z",
       0,
       0,
       15},
      {0,
       {0, 0, 10, 10},
       "M7 0h-4a7 6 0 0 1 7-6v-2a7 6 0 0 1 7 6h--4a7 6 0 0 1 -7 6"
       "v--2a7 6 0 0 1 -7-6z",
       14,
       12,
       15},
      {0,
       {1, 0, 11, 10},
       "M-2147483648 0h11a2147483647 0 0 0 1 2147483647 0"
       "v10a2147483647 0 0 0 1 2147483647 0h-11a2147483647 0 0 0 1 -2147483647 0"
       "v-10a2147483647 0 0 0 1 -2147483647 0z",
       4294967295,
       0,
       15},
  };
  for (const auto& [stroke, rectangle, data, width, height, mask] : cases) {
    const std::string expected = document("<path d=\""s + data + "\"/>");
    Page page;
    page(SVG_SetStroke, 0, 0, 0, 0, stroke);
    EXPECT_SAME(expected, page(SVG_DrawRoundedRectangle, &rectangle, width, height, mask).close())
        << data;
    if (width == 0 && mask == 0) {
      Page plain;
      plain(SVG_SetStroke, 0, 0, 0, 0, stroke)(SVG_DrawRectangle, &rectangle);
      EXPECT_SAME(expected, plain.close()) << data;
    }
  }
}

}  // namespace
}  // namespace qz::test
