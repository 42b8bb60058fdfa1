// What the library makes of an SVG picture: asked of the library itself, on a page of its own.
#pragma once

#include <qzsvggen/qzsvggen.h>
#if defined(_WIN32)
#include <windows.h>
#endif

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <tuple>

namespace qz::tools {

// The document of a page that has nothing but what `draw` draws.
template <class Draw>
std::u16string drawAlone(const RECT& page, Draw draw) {
  const std::unique_ptr<SvgGenerator, decltype(&SVG_Delete)> generator(SVG_Create(&page),
                                                                       SVG_Delete);
  draw(generator.get());
  const int32_t size = SVG_Close(generator.get(), nullptr, 0);
  std::basic_string<SVG_Char> document(static_cast<std::size_t>(size), SVG_Char());
  SVG_Close(generator.get(), document.data(), size);
  return {document.begin(), document.end()};
}

struct SvgPicture {
  bool isDrawn = false;
  std::u16string content;  // what the document has of the picture: one g element
  std::u16string sizing;   // the attributes of the symbol that places it
};

class SvgPictures {
 public:
  const SvgPicture& of(const RECT& bounds, const uint8_t* data, int32_t length);

 private:
  std::map<std::tuple<std::string, int32_t, int32_t>, SvgPicture> known_;
};

}  // namespace qz::tools
