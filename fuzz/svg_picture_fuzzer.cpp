// The bytes of an SVG picture: any bytes are taken, and one picture gives one document in whatever
// encoding it comes.
#include <qzsvggen/qzsvggen.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Document = std::basic_string<SVG_Char>;

void require(bool holds, const char* rule) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", rule);
  std::abort();
}

// A page on which the pictures are placed, one after the other, all at one place.
Document draw(std::initializer_list<const Bytes*> pictures) {
  const RECT bounds = {-10, 20, 290, 170};
  SvgGenerator* const generator = SVG_Create(&bounds);
  for (const Bytes* picture : pictures)
    SVG_DrawImage(generator, SVG_IMAGE_SVG, &bounds, picture->data(),
                  static_cast<int32_t>(picture->size()), 100);
  Document document(static_cast<size_t>(SVG_Close(generator, nullptr, 0)), u'\0');
  SVG_Close(generator, document.data(), static_cast<int32_t>(document.size()));
  SVG_Delete(generator);
  return document;
}

Bytes encode(const Bytes& ascii, const Bytes& mark, int zerosBefore, int zerosBehind) {
  Bytes result = mark;
  for (const uint8_t byte : ascii) {
    result.insert(result.end(), static_cast<size_t>(zerosBefore), 0);
    result.push_back(byte);
    result.insert(result.end(), static_cast<size_t>(zerosBehind), 0);
  }
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Bytes picture(data, data + size);
  const Document once = draw({&picture});
  // A third placement finds the picture by its bytes, the second by its hash.
  const Document thrice = draw({&picture, &picture, &picture});
  const size_t use = once.rfind(u"</defs>") + 7;
  const size_t useLength = once.size() - 1 - use - 6;  // less the zero and "</svg>"
  require(thrice.size() == once.size() + 2 * useLength, "a picture is stored once");
  for (size_t i = 0; i < 3; ++i)
    require(thrice.compare(use + i * useLength, useLength, once, use, useLength) == 0,
            "each placement refers to the same symbol");

  const bool isAscii =
      std::all_of(picture.begin(), picture.end(), [](uint8_t b) { return b < 128; });
  if (!isAscii || size < 2 || picture[1] == 0) return 0;
  const Bytes encodings[] = {encode(picture, {0xEF, 0xBB, 0xBF}, 0, 0),
                             encode(picture, {0xFF, 0xFE}, 0, 1),
                             encode(picture, {0xFE, 0xFF}, 1, 0), encode(picture, {}, 0, 1)};
  for (const Bytes& encoding : encodings)
    require(draw({&encoding}) == once, "encodings do not matter");
  return 0;
}
