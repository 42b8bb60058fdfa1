#include "page.h"

namespace qz::test {
namespace {

TEST(Text, EveryUnitBelongsToTheRun) {
  const struct {
    std::u16string text;
    const char* written;
  } cases[] = {
      {u"<a> & \"b\" 'c'", "&lt;a&gt; &amp; &quot;b&quot; &apos;c&apos;"},
      {{u"a\0b\0", 4}, "a\tb"},  // a NUL is a TAB, in the last place nothing
      {{u"\0\0", 2}, "\t"},
      {{u"\0", 1}, ""},
      {u"\u00e9\u4e2d\U0001F600", "\\u00e9\\u4e2d\\ud83d\\ude00"},
      {u"\u0100", "\\u0100"},
      {{0xDC00, 1, 0x7F, 0xFFFF, 0xD800}, "\\udc00\\u0001\\u007f\\uffff\\ud800"},
  };
  for (const auto& [text, written] : cases)
    EXPECT_SAME(document(markup("<text x='1' y='2' xml:space='preserve'>") + written + "</text>"),
                Page().text(text).close())
        << written;
}

TEST(Text, EachMarkupCharacterIsFoundAnywhere) {
  const std::pair<char16_t, const char*> cases[] = {
      {u'<', "&lt;"}, {u'>', "&gt;"}, {u'&', "&amp;"}, {u'"', "&quot;"},   {u'\'', "&apos;"},
      {u'\0', "\t"},  {u'#', "#"},    {u'=', "="},     {u'\1', "\\u0001"}, {u'\u013C', "\\u013c"}};
  for (const auto& [unit, written] : cases)
    for (size_t place = 0; place < 40; ++place) {
      std::u16string text(41, u'a');
      text[place] = unit;
      EXPECT_SAME(
          document(markup("<text x='1' y='2' xml:space='preserve'>") + std::string(place, 'a') +
                   written + std::string(40 - place, 'a') + "</text>"),
          Page().text(text).close());
    }
}

TEST(Text, PositionsAndScaling) {
  check({
      {"no units, no element; scaling without advances is ignored",
       [](Page& page) {
         for (const int length : {0, -1, kLeast})
           page(SVG_DrawText, nullptr, length, at({1, 2}), nullptr, 90);
         page.text(u"a", {1, 2}, {}, 90);
       },
       "<text x='1' y='2' xml:space='preserve'>a</text>"},
      {"a position for every unit, the dropped ones too, a negative one without a blank",
       [](Page& page) {
         page.text(u"abcd", {10, -5}, {7, -20, 3, 99}).text({u"&\0", 2}, {-5, 0}, {3, 4});
       },
       "<text x='10 17-3 0' y='-5' xml:space='preserve'>abcd</text>"
       "<text x='-5-2' y='0' xml:space='preserve'>&amp;</text>"},
      {"positions wrap",
       [](Page& page) {
         page.text(u"ab", {kMost, 0}, {1, -1}, 200);
       },
       "<text x='2147483647-2147483648' y='0' textLength='0' lengthAdjust='spacingAndGlyphs' "
       "velumark:characterScaling ='200' xml:space='preserve'>ab</text>"},
      {"scaling needs advances; its length includes the last one",
       [](Page& page) {
         page.font(u"Arial", 12).text(u"Hi&", {100, 200}, {7, 6, 8}, 90);
         page(SVG_SetFill, 255, 1, 2, 3).text(u"a", {1, 2}, {-5}, 0);
       },
       "<text x='100 107 113' y='200' class='QZ_fnt0' textLength='21' "
       "lengthAdjust='spacingAndGlyphs' velumark:characterScaling ='90' xml:space='preserve'>"
       "Hi&amp;</text><text x='1' y='2' class='QZ_fnt0' fill='rgb(1,2,3)' textLength='-5' "
       "lengthAdjust='spacingAndGlyphs' velumark:characterScaling ='0' xml:space='preserve'>"
       "a</text>",
       "<style>.QZ_fnt0{font:12px Arial;}</style>"},
  });
}

TEST(Fonts, EqualOnesShareARuleAndOnlyUsedOnesAreWritten) {
  const auto text = [](const std::string& font) {
    return "<text x='1' y='2'" + font + " xml:space='preserve'>a</text>";
  };
  const auto in = [&](const char* font) { return text(" class='QZ_fnt"s + font + "'"); };
  check({
      {"nothing drawn, no style", [](Page& page) { page.font(u"A", 1); }, ""},
      {"numbered as set, found again, cleared",
       [](Page& page) {
         page.text(u"a").font(u"Unused", 1).font(u"A", 12, true, true).text(u"a");
         page.font(u"A", 12, true).font(u"A", 12, false, true).text(u"a");
         page(SVG_ClearFont).text(u"a").font(u"A", 12, true, true).text(u"a");
         page.font({u"A\0", 2}, 12, true).text(u"a").font({u"\"B\0&'", 5}, -3).text(u"a");
       },
       text("") + in("1") + in("3") + text("") + in("1") + in("2") + in("4"),
       "<style>.QZ_fnt1{font:bold italic 12px A;}.QZ_fnt2{font:italic 12px A;}"
       ".QZ_fnt3{font:bold 12px A;}.QZ_fnt4{font:-3px &quot;B\t&amp;&apos;;}</style>"},
  });
}

// A character of the open block, with an outline and its place.
Page& square(Page& page, POINT place, int size = 5) {
  return page(SVG_DrawRectangle, box({place.x, place.y, place.x + size, place.y + size}));
}
Page& character(Page& page, POINT place) { return page(SVG_BeginCharacter, &place); }
Page& squareAt(Page& page, POINT place) { return square(character(page, place), place); }
Page& reference(Page& page, uint32_t index, POINT place) {
  return page(SVG_SetCharacterReference, index, &place);
}

TEST(CharacterBlock, AnOutlineIsWrittenOnceAndReused) {
  check({
      {"the second character, a reference, and the block's own paint",
       [](Page& page) {
         page(SVG_SetStroke, 255, 0, 0, 0, 8)(SVG_BeginCharacterBlock)(SVG_ClearStroke);
         squareAt(squareAt(page, {100, 50})(SVG_EndCharacter), {130, 50});
         reference(page, 0, {160, 40})(SVG_EndCharacterBlock).line();
       },
       "<g stroke='rgb(0,0,0)' stroke-width='8'>"
       "<path id='QZ_0_0' transform='translate(100 50)' d='M0 0h5v5h-5z'/>"
       "<use xlink:href='#QZ_0_0' x='30'/><use xlink:href='#QZ_0_0' x='60' y='-10'/></g>" +
           kLine},
      {"several shapes have suffixes; a known one among them is reused",
       [](Page& page) {
         square(squareAt(page(SVG_BeginCharacterBlock), {0, 0}), {0, 0}, 6);
         square(square(character(page, {0, 9}), {0, 9}, 6), {0, 9}, 7);
         reference(page, 1, {8, 9});
       },
       "<g><path id='QZ_0_0.0' d='M0 0h5v5h-5z'/><path id='QZ_0_0.1' d='M0 0h6v6h-6z'/>"
       "<use xlink:href='#QZ_0_0.1' y='9'/>"
       "<path id='QZ_0_1.1' transform='translate(0 9)' d='M0 0h7v7h-7z'/>"
       "<use xlink:href='#QZ_0_0.1' x='8' y='9'/></g>"},
      {"at (0, 0) the offset is not negated",
       [](Page& page) {
         page(SVG_BeginCharacterBlock);
         for (const POINT place : {POINT{10, -20}, {0, 0}, {0, -20}, {10, -20}})
           squareAt(page, place);
       },
       "<g><path id='QZ_0_0' transform='translate(10-20)' d='M0 0h5v5h-5z'/>"
       "<use xlink:href='#QZ_0_0' x='10' y='-20'/><use xlink:href='#QZ_0_0' x='-10'/>"
       "<use xlink:href='#QZ_0_0'/></g>"},
      {"each kind of shape; outlines are equal when their geometry text is; later ones repeated",
       [](Page& page) {
         page(SVG_BeginCharacterBlock);
         character(page, {10, 20})(SVG_DrawLine, at({11, 22}), at({10, 19}));
         character(page, {30, 20}).polyline({{30, 20}, {31, 15}});
         character(page, {40, 20})(SVG_DrawPolygon, at({41, 22}), 1);
         character(page, {50, 20}).polyline({{51, 22}});
         character(page, {60, 20}).path({{6, 60, 20}, {2, 61, 20}});
         character(page, {70, 20}).path({{6, 60, 20}, {2, 61, 20}});
         character(page, {75, 20}).path({{6, 60, 20}, {2, 61, 20}, {0, 1, 2}});
         character(page, {80, 20}).path({{6, 60, 20}, {3, 61, 20}});
         character(page, {9, 9})(SVG_DrawRoundedRectangle, box({9, 9, 19, 19}), 4, 2, 1);
         square(character(page, {8, 8}), {8, 8}, 10);
         reference(page, 7, {70, 20});
         character(page, {1, 1}).path({{6, 1, 1}}).path({{6, 2, 2}});
         reference(page, 11, {2, 1});
       },
       "<g><line id='QZ_0_0' x1='1' y1='2' x2='0' y2='-1'/>"
       "<polyline id='QZ_0_1' points='0 0 1-5'/><polygon id='QZ_0_2' points='1 2'/>"
       "<use xlink:href='#QZ_0_2' x='10'/><path id='QZ_0_4' d='M60 20l1 0'/>"
       "<use xlink:href='#QZ_0_4' x='10'/><use xlink:href='#QZ_0_4' x='15'/>"
       "<path id='QZ_0_7' d='M60 20l1 0z'/>"
       "<path id='QZ_0_8' transform='translate(9 9)' d='M2 0h6a2 1 0 0 1 2-1v8a2 1 0 0 1 2 1"
       "h-6a2 1 0 0 1 -2 1v-8a2 1 0 0 1 -2-1z'/><use xlink:href='#QZ_0_8' x='-1' y='-1'/>"
       "<use xlink:href='#QZ_0_7' x='-10'/><path id='QZ_0_11.0' d='M1 1'/>"
       "<path id='QZ_0_11.1' d='M2 2'/><use xlink:href='#QZ_0_11.0' x='1'/></g>"},
      {"across blocks; an abandoned block stays; references count within their block",
       [](Page& page) {
         squareAt(page(SVG_BeginCharacterBlock), {1, 1})(SVG_BeginCharacterBlock);
         squareAt(reference(page, 0, {9, 9}), {3, 3});
         squareAt(reference(page, 1, {4, 4}), {5, 5}).path({});
       },
       "<g><path id='QZ_0_0' transform='translate(1 1)' d='M0 0h5v5h-5z'/></g>"
       "<g><use xlink:href='#QZ_0_0' x='2' y='2'/><use xlink:href='#QZ_0_0' x='3' y='3'/>"
       "<use xlink:href='#QZ_0_0' x='4' y='4'/><path id='QZ_1_3.1' d=''/></g>"},
      {"references that lead nowhere, and one that is drawn after all",
       [](Page& page) {
         reference(page(SVG_BeginCharacterBlock), 1, {1, 1});  // not yet written
         square(reference(page, 0, {2, 2}), {2, 2});
         reference(page, 1, {2, 3});
         for (const uint32_t nowhere : {2u, 4u, 8u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
           reference(page, nowhere, {4, 4});
       },
       "<g><path id='QZ_0_1' transform='translate(2 2)' d='M0 0h5v5h-5z'/>"
       "<use xlink:href='#QZ_0_1' y='1'/></g>"},
      {"without a block, and a shape before the first character",
       [](Page& page) {
         reference(character(page, {1, 1}), 0, {1, 1})(SVG_EndCharacter)(SVG_EndCharacterBlock);
         page(SVG_BeginCharacterBlock).line();
       },
       "<g></g>"},
      {"everything but shapes goes behind the block, groups to the page",
       [](Page& page) {
         character(page(SVG_BeginCharacterBlock), {0, 0}).text(u"a").line().link(2, u"b");
         page.target({3, 4}, u"c").line()(SVG_EndCharacterBlock).line()(SVG_BeginCharacterBlock);
       },
       "<g><line id='QZ_0_0.0' x1='1' y1='2' x2='3' y2='4'/><use xlink:href='#QZ_0_0.0'/></g>"
       "<text x='1' y='2' xml:space='preserve'>a</text><a velumark:purpose='HypertextLink' "
       "velumark:linkType='FT_INTERNALLINK' velumark:targetName='b' xlink:href='#b'>"
       "<velumark:target purpose='DocumentTarget' name='c' position='3 4'/>" +
           kLine + "<g></g></a>"},
  });
}

}  // namespace
}  // namespace qz::test
