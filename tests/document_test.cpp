#include <bit>

#include "page.h"

namespace qz::test {
namespace {

const std::string kFilter = "<filter id='QZ_V'>" + kMatrix;
const std::string kMaskUse = "<use href='#content' mask='url(#QZ_MI)' filter='url(#QZ_V)'/>";
const std::string kEmptied = "width='0' height='0'";

TEST(Document, SizeIsThePagesEvenANegativeOne) {
  EXPECT_SAME(document(""), Page({10, 20, 110, 70}).close());
  EXPECT_SAME(document("", "", "width='-1' height='-90'"), Page({kLeast, 90, kMost, 0}).close());
}

TEST(Document, DefinitionsStandInAFixedOrder) {
  check({{"one of each",
          [](Page& page) {
            page(SVG_InvertRectangle, box({1, 2, 4, 7})).path({{6, 1, 2}}, SVG_InvertPath);
            page.clip({0, 0, 1, 1}).font(u"A", 9).text(u"b");
            page.image(8, {0, 0, 3, 4}, "<svg viewBox=\"0\">c</svg>").image(4, {0, 0, 5, 6}, "d");
          },
          "<g id='QZ_x'><g clip-path='url(#QZ_C0)'><text x='1' y='2' class='QZ_fnt0' "
          "xml:space='preserve'>b</text><use xlink:href='#QZ_S0' transform='translate(0 0)'/>"
          "<use xlink:href='#QZ_I0' x='0' y='0' width='5' height='6'/></g>" +
              kMaskUse + "</g><g filter='url(#QZ_V0)'><use xlink:href='#QZ_x'/></g>",
          "<clipPath id='QZ_C0'><path d='M0 0h1v1h-1z'/></clipPath>"
          "<symbol id='QZ_I0' viewBox='0 0 5 6'><image width='5' height='6' "
          "xlink:href='data:image/png;base64,ZA=='/></symbol><g id='QZ_G0'><g  >c</g></g>"
          "<symbol id='QZ_S0' width='3' height='4' viewBox='0'><use xlink:href='#QZ_G0'/></symbol>"
          "<style>.QZ_fnt0{font:9px A;}</style>" +
              kFilter +
              "<mask id='QZ_MI'><path fill='white' d='M1 2'/></mask>"
              "<filter id='QZ_V0' filterUnits='userSpaceOnUse' x='1' y='2' width='3' height='5'>" +
              kMatrix}});
}

TEST(Document, LargePiecesAreWhole) {
  const std::string least = "-2147483648";  // the widest number
  std::string data = "l", positions, written, file, base64;
  std::u16string text;
  std::vector<TypedPoint> path;
  for (int i = 0; i < 100003; ++i) {
    path.push_back({2, i % 2 ? 0 : kLeast, i % 2 ? 0 : kLeast});
    data += least + least, positions += least, written += "&amp;\\u4e2d", base64 += "YWJj";
    text += u"&\u4e2d", file += "abc";
  }
  Page page;
  page.path(path).text(text, {kLeast, 0}, std::vector<int32_t>(text.size()));
  page.image(4, {0, 0, 1, 1}, file + "a");
  EXPECT_SAME(
      markup(document("<path d='" + data + "'/><text x='" + positions + positions +
                          "' y='0' xml:space='preserve'>" + written +
                          "</text><use xlink:href='#QZ_I0' x='0' y='0' width='1' height='1'/>",
                      "<symbol id='QZ_I0' viewBox='0 0 1 1'><image width='1' height='1' "
                      "xlink:href='data:image/png;"
                      "base64," +
                          base64 + "YQ=='/></symbol>")),
      page.close());
}

// Texts of all lengths are joined: short ones are copied, where there is room, others linked.
TEST(Document, BlocksAndWhatFollowsThemHaveAnyLength) {
  Page page;
  std::string content;
  int block = 0;
  for (const size_t inside : {1u, 100u, 500u, 900u, 1000u, 1100u, 5000u, 1u})
    for (const size_t behind : {0u, 1u, 100u, 3900u, 4000u, 4096u, 30000u, 1u, 0u}) {
      page(SVG_BeginCharacterBlock)(SVG_BeginCharacter, at({0, 0}));
      page.polyline(std::vector<POINT>(inside, {block, 10})).text(std::u16string(behind, u'a'));
      page(SVG_EndCharacterBlock).line();
      const std::string number = std::to_string(block++);
      content += "<g><polyline id='QZ_" + number + "_0' points='" + number + " 10";
      for (size_t i = 1; i < inside; ++i) content.append(" ").append(number).append(" 10");
      content += "'/></g>";
      if (behind > 0)
        content += "<text x='1' y='2' xml:space='preserve'>" + std::string(behind, 'a') + "</text>";
      content += kLine;
    }
  EXPECT_SAME(markup(document(content)), page.close());
}

TEST(Close, OnlyTheExactSizeIsAccepted) {
  Page page;
  SVG_Char one = u'~';
  page(SVG_Close, &one, 2)(SVG_Close, &one, 0);
  EXPECT_EQ(u'~', one);
  page(SVG_Close, &one, 1);  // the document is still empty
  EXPECT_EQ(0, one);
  const int32_t size = SVG_Close(page.line().generator, nullptr, 0);
  std::vector<SVG_Char> buffer(static_cast<size_t>(size) + 1, u'~');
  page(SVG_Close, buffer.data(), size + 1)(SVG_Close, buffer.data(), size - 1);
  EXPECT_EQ(std::vector<SVG_Char>(buffer.size(), u'~'), buffer);
  page(SVG_Close, buffer.data(), size);
  EXPECT_SAME(document(markup(kLine)) + "\\u0000~", readable(buffer));
  one = u'~';
  page(SVG_Close, buffer.data(), size)(SVG_Close, &one, 1);  // handed over, empty again
  EXPECT_EQ(0, one);
  EXPECT_SAME(document("", "", kEmptied), page.close());
}

TEST(Close, AfterwardsNothingIsRecorded) {
  Page page;
  const RECT rectangle = {0, 0, 9, 9};
  page.clip(rectangle).link(1, u"a").line()(SVG_BeginInvertPainting)(SVG_BeginCharacterBlock);
  EXPECT_GT(SVG_Close(page.generator, nullptr, 0), 0);
  page(SVG_SetFill, 1, 2, 3, 4)(SVG_BeginInvertPainting)(SVG_SetFill, 1, 2, 3, 4)(SVG_ClearStroke);
  page(SVG_SetStroke, 1, 2, 3, 4, 5)(SVG_InvertPath, nullptr, nullptr, 0).line().path({});
  page(SVG_InvertRectangle, &rectangle)(SVG_DrawRectangle, &rectangle).clip(rectangle).target({});
  page(SVG_AddClippingRegion, &rectangle)(SVG_ExcludeClippingRegion, &rectangle).link(1, u"a");
  page(SVG_BeginCharacterBlock)(SVG_BeginCharacter, at({1, 2})).line().font(u"a", 1);
  page.text(u"a", {}, {1}, 9).image(4, rectangle, "a", 9).image(8, rectangle, "<svg a></svg>");
  EXPECT_EQ(-1, SVG_GetCurrentClippingRegion(page.generator));
  EXPECT_EQ(1, SVG_SetCurrentClippingRegion(page.generator, 0));
  EXPECT_EQ(100, SVG_GetVersion());
  EXPECT_SAME(document("", "", kEmptied), page.close());
}

TEST(Close, AThirdDocumentKeepsWhatInversionLeft) {
  Page page, other;
  page(SVG_BeginInvertPainting)(SVG_ClearStroke).link(1, u"a").line();
  page(SVG_InvertRectangle, box({0, 0, 9, 9})).close();
  EXPECT_SAME(document("", markup(kFilter), kEmptied), page.close());
  other(SVG_InvertPath, nullptr, nullptr, 0)(SVG_InvertRectangle, box({0, 0, 9, 9})).close();
  const std::string mask = "<mask id='QZ_MI'><path fill='white' d=''/></mask>";
  for (int i = 0; i < 2; ++i)
    EXPECT_SAME(markup(document(kMaskUse, kFilter + mask, kEmptied)), other.close());
}

TEST(Close, ANullHandleIsIgnored) {
  EXPECT_EQ(0, SVG_Close(nullptr, nullptr, 0));
  EXPECT_EQ(0, SVG_DrawLine(nullptr, at({1, 2}), at({3, 4})));
  EXPECT_EQ(0, SVG_Delete(nullptr));
}

TEST(Inversion, TravelsWithPaintSetWhileItIsOn) {
  const std::string inverted = "<line filter='url(#QZ_V)' x1='1' y1='2' x2='3' y2='4'/>";
  const std::string all =
      " fill='rgb(1,2,3)' fill-opacity='0.200000' stroke='rgb(4,5,6)' "
      "stroke-opacity='0.200000' stroke-width='7' filter='url(#QZ_V)'";
  check({
      {"without a paint call it has no effect",
       [](Page& page) { page(SVG_BeginInvertPainting).line()(SVG_EndInvertPainting); }, kLine},
      {"a paint call alone brings the filter",
       [](Page& page) { page(SVG_BeginInvertPainting)(SVG_SetFill, 255, 0, 0, 0); }, "", kFilter},
      {"paint set while it is on stays inverted; Begin does not count",
       [](Page& page) {
         page(SVG_BeginInvertPainting)(SVG_BeginInvertPainting)(SVG_ClearStroke).line();
         page(SVG_EndInvertPainting).line()(SVG_ClearStroke).line();
       },
       inverted + inverted + kLine, kFilter},
      {"the filter is the last paint attribute, of text and blocks too",
       [](Page& page) {
         page(SVG_BeginInvertPainting)(SVG_SetFill, 51, 1, 2, 3)(SVG_SetStroke, 51, 4, 5, 6, 7);
         page.text(u"a")(SVG_BeginCharacterBlock);
       },
       "<text x='1' y='2'" + all + " xml:space='preserve'>a</text><g" + all + "></g>", kFilter},
      {"paths share one mask, even while a block is open",
       [](Page& page) {
         page(SVG_BeginCharacterBlock).path({{6, 1, 2}, {3, 3, 4}}, SVG_InvertPath);
         page(SVG_BeginCharacter, at({5, 5})).path({{2, 3, 4}}, SVG_InvertPath);
       },
       "<g></g>" + kMaskUse,
       kFilter + "<mask id='QZ_MI'><path fill='white' d='M1 2l2 2z'/><path fill='white' d='l3 4'/>"
                 "</mask>"},
      {"rectangles each draw the content again, without the page's filter",
       [](Page& page) {
         page.link()(SVG_InvertRectangle, box({5, 6, 3, 9}));
         page(SVG_InvertRectangle, box({-kMost, -1, kMost, -3}));
       },
       "<g id='QZ_x'>" + kLink +
           "</a></g><g filter='url(#QZ_V0)'><use xlink:href='#QZ_x'/></g>"
           "<g filter='url(#QZ_V1)'><use xlink:href='#QZ_x'/></g>",
       "<filter id='QZ_V0' filterUnits='userSpaceOnUse' x='5' y='6' width='-2' height='3'>" +
           kMatrix +
           "<filter id='QZ_V1' filterUnits='userSpaceOnUse' x='-2147483647' y='-1' "
           "width='-2' height='-2'>" +
           kMatrix},
  });
}

// Turns units whose low byte comes first, behind the first `kept` bytes, into the machine's.
std::string ofMachine(std::string data, size_t kept) {
  if (std::endian::native == std::endian::big)
    for (size_t i = kept; i + 1 < data.size(); i += 2) std::swap(data[i], data[i + 1]);
  return data;
}

TEST(Groups, FormFieldAttributes) {
  const std::string number = "\xC8\xAF\0\0\0\0\0\0"s, date = " velumark:formFieldType='FT_DATE'";
  const struct {
    int type, flags, exFlags;
    std::u16string name;
    std::string data;
    int32_t size;
    std::string before, after;  // of the bounds
  } cases[] = {
      {16, 3, 0, u"Amount", "4\0002\0"s, 4,
       " velumark:formFieldType='FT_FORMTEXT' velumark:fieldFlags='3'",
       " velumark:name='Amount' velumark:typeData='42'"},
      {14, 0, 255, u"\"", "<\0!"s, 3,
       " velumark:formFieldType='FT_CHECKBOX' velumark:exFieldFlags='255'",
       " velumark:name='&quot;' velumark:typeData='&lt;'"},
      {15, 255, 1, u"", "a", 1,
       " velumark:formFieldType='FT_COMBOBOX' "
       "velumark:fieldFlags='255' velumark:exFieldFlags='1'",
       ""},
      {13, 0, 0, {u"\0", 1}, "", 0, "", ""},
      {18, 0, 0, u"a", "", kLeast, "", " velumark:name='a'"},
      {17, 0, 0, u"", number, 8, date, " velumark:typeData='45000 '"},
      {17, 0, 0, u"", number, 0, date, " velumark:typeData='45000 '"},
      {17, 0, 0, u"", std::string(8, '\xFF'), kLeast, date,
       " velumark:typeData='18446744073709551615 '"},
      {17, 0, 0, u"", "\0\0\0\0\0\0\0\x80&\0b\0c\0"s, 13, date,
       " velumark:typeData='9223372036854775808 &amp;b'"},
  };
  for (const auto& [type, flags, exFlags, name, data, size, before, after] : cases) {
    // Bytes may stand at any address; their units are the machine's, the number never.
    std::string odd = ofMachine(data, type == SVG_FIELD_DATE ? 8 : 0);
    odd.insert(odd.begin(), '?');
    Page page;
    page(SVG_BeginFormField, type, flags, exFlags, box({10, 20, -110, 40}), units(name).data(),
         name.size(), odd.data() + 1, size);
    EXPECT_SAME(document(markup("<g velumark:purpose='FormField'" + before +
                                " velumark:bounds='10 20 -110 40'" + after + "></g>")),
                page.close())
        << "type " << type << ", data of " << size << " bytes";
  }
}

TEST(Groups, LinksTargetsAndSignatures) {
  check({
      {"links lead to an address, a fragment or nowhere; targets stand where they are set",
       [](Page& page) {
         page.link(1, u"a&b").target({-3, -4}, u"<").link(2, u"c\"").link(3, u"d")(SVG_EndLink);
         page.target({72, 144});
       },
       "<a velumark:purpose='HypertextLink' velumark:linkType='FT_EXTERNALLINK' "
       "velumark:targetName='a&amp;b' xlink:href='a&amp;b'>"
       "<velumark:target purpose='DocumentTarget' name='&lt;' position='-3 -4'/></a>"
       "<a velumark:purpose='HypertextLink' velumark:linkType='FT_INTERNALLINK' "
       "velumark:targetName='c&quot;' xlink:href='#c&quot;'></a>"
       "<a velumark:purpose='HypertextLink' velumark:targetName='d' xlink:href=''></a>"
       "<velumark:target purpose='DocumentTarget' name='' position='72 144'/>"},
      {"a target alone declares the namespace",
       [](Page& page) {
         page.target({1, 2});
       },
       "<velumark:target purpose='DocumentTarget' name='' position='1 2'/>"},
      {"a signature's data is measured in bytes",
       [](Page& page) {
         page(SVG_BeginSignatureField, box({50, 600, 250, 660}), units(u"S1").data(), 2,
              units(u"a<b").data(), 5);
         page(SVG_BeginSignatureField, box({-1, -2, -3, -4}), nullptr, 0, nullptr, -2);
       },
       "<g velumark:purpose='SignatureField' velumark:name='S1' velumark:infoData='a&lt;' "
       "velumark:bounds='50 600 250 660'></g>"
       "<g velumark:purpose='SignatureField' velumark:bounds='-1 -2 -3 -4'></g>"},
      {"groups never nest, and any End ends any of them",
       [](Page& page) {
         const RECT bounds = {0, 0, 1, 1};
         page(SVG_EndLink).link().line();
         page(SVG_BeginFormField, 0, 0, 0, &bounds, nullptr, 0, nullptr, 0).line();
         page(SVG_EndSignatureField).line().link()(SVG_EndFormField).line();
         page(SVG_BeginSignatureField, &bounds, nullptr, 0, nullptr, 0)(SVG_EndLink).line();
       },
       kLink + kLine + "</a><g velumark:purpose='FormField' velumark:bounds='0 0 1 1'>" + kLine +
           "</g>" + kLine + kLink + "</a>" + kLine +
           "<g velumark:purpose='SignatureField' velumark:bounds='0 0 1 1'></g>" + kLine},
  });
}

}  // namespace
}  // namespace qz::test
