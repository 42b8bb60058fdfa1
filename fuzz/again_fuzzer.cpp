// Things that come again: outlines, fonts and pictures, most of which differ from another in one
// place. Drawn in turn twice and then in reverse, each is written first, found by what it writes
// the second time, and from then on mostly by its points or bytes. Shortcuts change nothing: two
// look the same on one page if, and only if, they give the same document alone.
#include <fuzzer/FuzzedDataProvider.h>
#include <qzsvggen/qzsvggen.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace {

using Document = std::basic_string<SVG_Char>;

void require(bool holds, const char* rule) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", rule);
  std::abort();
}

struct Thing {
  enum Kind { kOutline, kFont, kPicture, kSvgPicture, kMaxValue = kSvgPicture } kind;
  std::vector<POINT> points;  // of an outline
  std::string bytes;          // its types, the font's family, the picture
};

void drawOutline(SvgGenerator* page, const Thing& thing) {
  constexpr POINT kPosition = {1, 1};
  const std::vector<uint8_t> types(thing.bytes.begin(), thing.bytes.end());
  SVG_BeginCharacterBlock(page);
  SVG_BeginCharacter(page, &kPosition);
  SVG_DrawPath(page, thing.points.data(), types.data(), static_cast<uint32_t>(types.size()));
  SVG_EndCharacterBlock(page);
}

// Each byte is a unit of one of the low two bits and otherwise alike.
void drawFont(SvgGenerator* page, const Thing& thing) {
  constexpr POINT kOrigin = {1, 1};
  Document family;
  for (const char byte : thing.bytes)
    family.push_back(static_cast<SVG_Char>((byte & 3) << 8 | 'a' | (byte & 4)));
  SVG_SetFont(page, family.data(), static_cast<uint32_t>(family.size()), 9, 0, 0);
  SVG_DrawText(page, family.data(), family.empty() ? 0 : 1, &kOrigin, nullptr, 100);
}

void draw(SvgGenerator* page, const Thing& thing) {
  if (thing.kind == Thing::kOutline) return drawOutline(page, thing);
  if (thing.kind == Thing::kFont) return drawFont(page, thing);
  constexpr RECT kBounds = {0, 0, 9, 9};
  const bool isSvg = thing.kind == Thing::kSvgPicture;
  const std::string text = isSvg ? "<svg viewBox='0'>" + thing.bytes + "</svg>" : thing.bytes;
  const std::vector<uint8_t> file(text.begin(), text.end());
  SVG_DrawImage(page, isSvg ? SVG_IMAGE_SVG : SVG_IMAGE_PNG, &kBounds, file.data(),
                static_cast<int32_t>(file.size()), 100);
}

// The document of a page of these things, with a target behind each.
Document draw(const std::vector<const Thing*>& things) {
  constexpr RECT kPage = {0, 0, 9, 9};
  constexpr POINT kOrigin = {0, 0};
  SvgGenerator* const page = SVG_Create(&kPage);
  for (const Thing* thing : things) {
    draw(page, *thing);
    SVG_SetDocumentTarget(page, &kOrigin, nullptr, 0);
  }
  Document document(static_cast<size_t>(SVG_Close(page, nullptr, 0)), u'\0');
  SVG_Close(page, document.data(), static_cast<int32_t>(document.size()));
  SVG_Delete(page);
  return document;
}

// What the page shows of each thing.
std::vector<Document> elements(const Document& document) {
  std::vector<Document> result;
  size_t start = document.rfind(u"</defs>") + 7;
  for (size_t end; (end = document.find(u"<velumark:target", start)) != document.npos;) {
    result.push_back(document.substr(start, end - start));
    start = document.find(u'>', end) + 1;
  }
  return result;
}

// Differs from the other in one place, or not at all.
Thing vary(FuzzedDataProvider& input, Thing thing) {
  const auto place = input.ConsumeIntegral<uint8_t>();
  const auto change = input.ConsumeIntegral<uint8_t>();
  if (!thing.points.empty() && place % 2 == 0) {
    POINT& point = thing.points[place / 2 % thing.points.size()];
    (change % 2 == 0 ? point.x : point.y) += change / 2;
  } else if (!thing.bytes.empty()) {
    char& byte = thing.bytes[place / 2 % thing.bytes.size()];
    byte = static_cast<char>(byte ^ change);
  }
  return thing;
}

Thing make(FuzzedDataProvider& input) {
  Thing thing{input.ConsumeEnum<Thing::Kind>(), {}, input.ConsumeRandomLengthString(40)};
  if (thing.kind != Thing::kOutline) return thing;
  for (char& type : thing.bytes) type = "\6\2\3\4\5\1\0\7"[type & 7];
  for (size_t i = 0; i < thing.bytes.size(); ++i)
    thing.points.push_back({input.ConsumeIntegral<int8_t>(), 5});
  return thing;
}

// Rarely very many, told apart by what is added at their ends.
void multiply(std::vector<Thing>& things) {
  const Thing first = things.front();
  for (int i = 0; i < 1500; ++i) {
    Thing& thing = things.emplace_back(first);
    if (thing.kind == Thing::kOutline)
      thing.points.push_back({i, i}), thing.bytes.push_back('\2');
    else
      for (int rest = i; rest > 0; rest /= 8)
        thing.bytes.push_back(static_cast<char>('0' + rest % 8));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider input(bytes, size);
  std::vector<Thing> things = {make(input)};
  if (input.ConsumeIntegral<uint8_t>() == 1) multiply(things);
  while (input.remaining_bytes() > 0)
    things.push_back(input.ConsumeBool() ? make(input) : vary(input, things.back()));

  std::vector<const Thing*> order;
  for (int times = 0; times < 2; ++times)
    for (const Thing& thing : things) order.push_back(&thing);
  for (size_t i = things.size(); i-- > 0;) order.push_back(&things[i]);
  const std::vector<Document> shown = elements(draw(order));
  require(shown.size() == order.size(), "all is drawn");

  std::map<Document, Document> shownOf, documentOf;
  for (size_t i = 0; i < things.size(); ++i) {
    const Document& again = shown[things.size() + i];
    require(again == shown[order.size() - 1 - i], "the third time is like the second");
    const Document alone = draw({&things[i]});
    require(shownOf.emplace(alone, again).first->second == again, "equal things are shared");
    if (things[i].kind != Thing::kPicture)  // these are known by 32 bits
      require(documentOf.emplace(again, alone).first->second == alone, "others are not");
  }
  return 0;
}
