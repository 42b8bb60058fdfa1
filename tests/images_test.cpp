#include "page.h"

namespace qz::test {
namespace {

const RECT kBounds = {10, 20, 40, 60};

std::string symbol(const std::string& base64, const char* kind = "png", int number = 0) {
  return "<symbol id='QZ_I" + std::to_string(number) +
         "' viewBox='0 0 30 40'><image width='30' height='40' xlink:href='data:image/" + kind +
         ";base64," + base64 + "'/></symbol>";
}

std::string placed(int number, const std::string& quality = "") {
  return "<use xlink:href='#QZ_I" + std::to_string(number) +
         "' x='10' y='20' width='30' height='40'" + quality + "/>";
}

std::string quality(const char* number) { return " velumark:compressionQuality='"s + number + "'"; }

TEST(Raster, Base64OfAnyLength) {
  const std::pair<std::string, std::string> cases[] = {
      {"\xFF", "/w=="},
      {"\xFF\xEE", "/+4="},
      {"\xFF\xEE\xDD", "/+7d"},
      {"\xFF\xEE\xDD\xCC", "/+7dzA=="},
      {"\xFF\xEE\xDD\xCC\xBB", "/+7dzLs="},
      {"\x00\x10\x83\x10\x51\x87\x20\x92\x8b\x30\xd3\x8f\x41\x14\x93\x51\x55\x97\x61\x96\x9b\x71"
       "\xd7\x9f\x82\x18\xa3\x92\x59\xa7\xa2\x9a\xab\xb2\xdb\xaf\xc3\x1c\xb3\xd3\x5d\xb7\xe3\x9e"
       "\xbb\xf3\xdf\xbf"s,
       "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"}};
  for (const auto& [bytes, base64] : cases)
    EXPECT_SAME(document(markup(placed(0)), markup(symbol(base64))),
                Page().image(4, kBounds, bytes).close())
        << base64;
}

TEST(Raster, PicturesAreStoredOnceAndPlacedByReference) {
  check({
      {"the first placement gives format and size",
       [](Page& page) {
         page.image(5, kBounds, "ab").image(4, {-1, 5, -3, 0}, "ab");
       },
       placed(0) + "<use xlink:href='#QZ_I0' x='-1' y='5' width='-2' height='-5'/>",
       symbol("YWI=", "jpeg")},
      {"found again in groups, under clip regions and while a block is open",
       [](Page& page) {
         page.link().image(4, kBounds, "a")(SVG_EndLink).image(4, kBounds, "b");
         page.clip({0, 0, 1, 1}).image(4, kBounds, "a");
         page(SVG_BeginCharacterBlock)(SVG_BeginCharacter, at({0, 0})).image(4, kBounds, "b");
       },
       kLink + placed(0) + "</a>" + placed(1) + "<g clip-path='url(#QZ_C0)'>" + placed(0) +
           "<g></g>" + placed(1) + "</g>",
       "<clipPath id='QZ_C0'><path d='M0 0h1v1h-1z'/></clipPath>" + symbol("YQ==") +
           symbol("Yg==", "png", 1)},
      {"any quality but 100 is recorded",
       [](Page& page) {
         for (const int quality : {90, 100, 0, 65535}) page.image(4, kBounds, "a", quality);
       },
       placed(0, quality("90")) + placed(0) + placed(0, quality("0")) + placed(0, quality("65535")),
       symbol("YQ==")},
      {"an unknown format refers to nothing, or to what comes next, or to the same bytes",
       [](Page& page) {
         page.image(9, kBounds, "a").image(0, kBounds, "a", 90).image(4, kBounds, "b");
         page.image(9, kBounds, "b").image(9, kBounds, "a").image(65535, kBounds, "c");
       },
       placed(0) + placed(0, quality("90")) + placed(0) + placed(0) + placed(1) + placed(1),
       symbol("Yg==")},
      {"pictures of one 32-bit hash share the first one's symbol",
       [](Page& page) {
         page.image(4, kBounds, "\1\0"s).image(5, kBounds, "\37").image(4, kBounds, "\0\37"s);
       },
       placed(0) + placed(0) + placed(0), symbol("AQA=")},
      {"the hash value 4294967295 and no length draw nothing; its neighbour is drawn",
       [](Page& page) {
         page.image(4, kBounds, "?lf1Pn]qk)n\42\0\20\1\15\33\15\11"s, 90).image(9, kBounds, "", 90);
         for (const int format : {4, 8, 9}) page(SVG_DrawImage, format, &kBounds, nullptr, -1, 90);
         page.image(4, kBounds, "?lf1Pn]qk)n\42\0\20\1\15\33\15\10"s);
       },
       placed(0), symbol("P2xmMVBuXXFrKW4iABABDRsNCA==")},
  });
}

// The page with one SVG picture; the quality means nothing to it.
std::string drawn(const std::string& file) { return Page().image(8, kBounds, file, 90).close(); }

// What it must be: the picture's group and its sizing.
std::string page(const std::string& content, const std::string& box = "0 0 500.000000 500.000000") {
  return document(markup("<use xlink:href='#QZ_S0' transform='translate(10 20)'/>"),
                  markup("<g id='QZ_G0'>") + content +
                      markup("</g><symbol id='QZ_S0' width='30' height='40' viewBox='") + box +
                      markup("'><use xlink:href='#QZ_G0'/></symbol>"));
}

TEST(SvgPicture, TheRootsTagIsTakenApartAsText) {
  const struct {
    const char *rule, *picture, *content, *box = "0 0 500.000000 500.000000";
  } cases[] = {
      {"nothing but blanks", "<svg ></svg>", "<g  ></g>"},
      {"blanks outside quotes shrink to one",
       "<?xml?><svgx /><svg\n\n xmlns=\"u\"\t\r width=\"10\">X</svg>\n", "<g  xmlns=\"u\" >X</g>",
       "0 0 10.000000 500.000000"},
      {"quotes of either kind toggle", "<svg a=\"x  y\" b='\"  z'>X</svg>",
       "<g  a=\"x  y\" b='\" z'>X</g>"},
      {"the view box wins, as written", "<svg id='a' viewBox='0  -1 5,5' width=\"1\" c=''>X</svg>",
       "<g  c=''>X</g>", "0  -1 5,5"},
      {"the first of each counts", "<svg height=\"3\" viewBox=\"1\" viewBox=\"2\">X</svg>",
       "<g  viewBox=\"2\">X</g>", "1"},
      {"names know no word boundary: stroke-width, and then the id of width",
       "<svg stroke-width=\"3\" width=\"7\">X</svg>", "<g  stroke- w>X</g>",
       "0 0 3.000000 500.000000"},
      {"an equals sign is not missed", "<svg width \"8\">X</svg>", "<g  >X</g>",
       "0 0 8.000000 500.000000"},
      {"an empty value is no match", "<svg width=\"\" height=\"5\">X</svg>",
       "<g  width=\"\" >X</g>", "0 0 500.000000 5.000000"},
      {"nor is one without its closing quote", "<svg a width=\"5'>X</svg>",
       "<g  a width=\"5'>X</g>"},
      {"the first > ends the tag, even in quotes", "<svg a=\">\" width=\"9\">X</svg>",
       "<g  a=\">\" width=\"9\">X</g>"},
      {"a root without attributes is passed over", "<svg><svg a=\"b\">X</svg></svg>",
       "<g  a=\"b\">X</svg></g>"},
      {"the last end counts, the inside is copied as it is",
       "<svg a=\"b\"> <svg  id=\"c\">\n&lt;</svg>X</svg>Y",
       "<g  a=\"b\"> <svg  id=\"c\">\\u000a&lt;</svg>X</g>"},
      {"no blank after svg", "<svg>X</svg>", nullptr},
      {"no end of the tag", "<svg a=\"b\"", nullptr},
      {"no end", "<svg a=\"b\"/>", nullptr},
      {"the end before the root", "</svg><svg a=\"b\">X</svg", nullptr},
      {"too short", "<svg", nullptr},
  };
  for (const auto& [rule, picture, content, box] : cases)
    EXPECT_SAME(content == nullptr ? document("") : page(content, box), drawn(picture)) << rule;
}

TEST(SvgPicture, LengthsHaveUnitsAndAreSinglePrecision) {
  const std::string zeros(400, '0');
  const std::pair<std::string, const char*> cases[] = {
      {"0." + zeros + "1px", "0.000000"},
      {"1e-2147483649px", "0.000000"},
      {"98.75", "98.750000"},
      {" 10px ", "10.000000"},
      {"+5", "5.000000"},
      {"-.5", "-0.500000"},
      {"-0", "-0.000000"},
      {"2in", "192.000000"},
      {"10cm", "377.952759"},
      {"100mm", "377.952759"},
      {"12pt", "9.000000"},
      {"1.1pc", "9.900001"},
      {"100%", "2.000000"},
      {"100 % ", "2.000000"},
      {"1 in", "96.000000"},
      {"1e+2", "100.000000"},
      {"1e2px", "100.000000"},
      {"1e", "1.000000"},
      {"0x10", "0.000000"},
      {"1,5", "1.000000"},
      {"7xx", "7.000000"},
      {"1PX", "1.000000"},
      {"\t7", "7.000000"},
      {"16777217", "16777216.000000"},
      {"-3.4028234e38", "-340282346638528859811704183484516925440.000000"},
      {"1e-99px", "0.000000"}};
  for (const auto& [length, size] : cases)
    EXPECT_SAME(page("<g  >X</g>", "0 0 "s + size + " 500.000000"),
                drawn("<svg width='" + length + "'>X</svg>"))
        << length;
  EXPECT_SAME(page("<g  >X</g>", "0 0 500.000000 0.266667"), drawn("<svg height='10%'>X</svg>"));
  for (const std::string& length :
       {"1em"s, "1ex"s, "1ix"s, "1e5"s, "1e39px"s, "3.4028236e38px"s, "px"s, "%"s, " "s, "p"s,
        "inf"s, "nan"s, "+"s, ".e1px"s, "1" + zeros + "e-10px", "1e+2147483648px"s})
    EXPECT_SAME(page("<g  >X</g>"), drawn("<svg width='" + length + "'>X</svg>")) << length;
}

std::string utf16(std::u16string_view text, bool bigEndian = false) {
  std::string bytes;
  for (const char16_t unit : text)
    for (const bool high : {bigEndian, !bigEndian})
      bytes += static_cast<char>(high ? unit >> 8 : unit & 0xFF);
  return bytes;
}

TEST(SvgPicture, Encodings) {
  const auto picture = [](const std::string& inside) { return "<svg a=''>" + inside + "</svg>"; };
  const std::u16string wide = u"<svg a=''>\u0100\u4e2d\U0001F600</svg>";
  const std::string narrow = picture("\xC4\x80\xE4\xB8\xAD\xF0\x9F\x98\x80");
  const std::string written = "\\u0100\\u4e2d\\ud83d\\ude00";
  const struct {
    const char* rule;
    std::string bytes, inside;
  } cases[] = {
      {"UTF-8", narrow, written},
      {"UTF-8 with a mark", "\xEF\xBB\xBF" + narrow, written},
      {"UTF-16 with a mark", "\xFF\xFE" + utf16(wide), written},
      {"big-endian; an odd last byte does not count", "\xFE\xFF" + utf16(wide, true) + "!",
       written},
      {"UTF-16 without a mark, and an odd byte", utf16(wide) + "!", written},
      {"the same, with a first unit beyond ASCII", utf16(u"\u4e80" + wide), written},
      {"UTF-8 is not checked, and may be longer than needed", picture("\xC3!\xE0\x80\x80"),
       "\\u00e1\\u0000"},
      {"bytes that start no sequence", picture("\x80\xBF\xF8\xFF"), "\\u0000\\u0000\\u0000\\u0000"},
      {"beyond Unicode, a surrogate, the first of two units",
       picture("\xF7\xBF\xBF\xBF\xED\xA0\x80\xF0\x90\x80\x80"),
       "\\udfbf\\udfff\\ud800\\ud800\\udc00"},
      {"a sequence cut short ends the text", picture("X") + "\xF0\x9F\x98", "X"}};
  for (const auto& [rule, bytes, inside] : cases)
    EXPECT_SAME(page("<g  a=''>" + inside + "</g>"), drawn(bytes)) << rule;
  for (const std::string& nothing :
       {"<"s, "\xEF\xBB\xBF"s, "\xEF\xBB"s, "\xFF\xFE"s, "\xFE\xFF<"s, "\x80"s, "\xC3"s,
        "\xE9" + narrow, utf16(wide, true), picture("X\xF0")})
    EXPECT_SAME(document(""), drawn(nothing)) << testing::PrintToString(nothing);
}

TEST(SvgPicture, ContentIsSharedAndSizesHaveASymbolEach) {
  check(
      {{"two contents, three sizings, five placements",
        [](Page& page) {
          const std::string icon = "<svg viewBox=\"0\">X</svg>";
          page.image(8, kBounds, icon).image(8, {-1, -2, 29, 38}, "?<svg  viewBox='0'>X</svg>");
          page.image(8, {0, 0, 2, -2}, icon).image(8, kBounds, "<svg viewBox=\"0\">Y</svg>");
          page.link().image(8, {1, 1, 3, -1}, icon);
        },
        "<use xlink:href='#QZ_S0' transform='translate(10 20)'/>"
        "<use xlink:href='#QZ_S0' transform='translate(-1-2)'/>"
        "<use xlink:href='#QZ_S1' transform='translate(0 0)'/>"
        "<use xlink:href='#QZ_S2' transform='translate(10 20)'/>" +
            kLink + "<use xlink:href='#QZ_S1' transform='translate(1 1)'/></a>",
        "<g id='QZ_G0'><g  >X</g></g><g id='QZ_G1'><g  >Y</g></g>"
        "<symbol id='QZ_S0' width='30' height='40' viewBox='0'><use xlink:href='#QZ_G0'/></symbol>"
        "<symbol id='QZ_S1' width='2' height='-2' viewBox='0'><use xlink:href='#QZ_G0'/></symbol>"
        "<symbol id='QZ_S2' width='30' height='40' viewBox='0'><use "
        "xlink:href='#QZ_G1'/></symbol>"}});
}

}  // namespace
}  // namespace qz::test
