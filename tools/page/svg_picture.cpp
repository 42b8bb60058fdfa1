#include "svg_picture.h"

namespace qz::tools {
namespace {

SvgPicture draw(const RECT& bounds, const uint8_t* data, int32_t length) {
  constexpr std::u16string_view kContent = u"<g id=\"QZ_G0\">",
                                kSymbol = u"</g><symbol id=\"QZ_S0\"",
                                kUse = u"><use xlink:href=\"#QZ_G0\"/></symbol></defs>";
  const std::u16string document = drawAlone(bounds, [&](SvgGenerator* page) {
    SVG_DrawImage(page, SVG_IMAGE_SVG, &bounds, data, length, 100);
  });
  const std::size_t content = document.find(kContent) + kContent.size();
  const std::size_t symbol = document.rfind(kSymbol), use = document.rfind(kUse);
  if (symbol == std::u16string::npos || use == std::u16string::npos) return {};
  const std::size_t sizing = symbol + kSymbol.size();
  return {true, document.substr(content, symbol - content), document.substr(sizing, use - sizing)};
}

}  // namespace

const SvgPicture& SvgPictures::of(const RECT& bounds, const uint8_t* data, int32_t length) {
  // Only the size matters; differences wrap around as they do in the library.
  const auto width = static_cast<int32_t>(static_cast<uint32_t>(bounds.right) -
                                          static_cast<uint32_t>(bounds.left));
  const auto height = static_cast<int32_t>(static_cast<uint32_t>(bounds.bottom) -
                                           static_cast<uint32_t>(bounds.top));
  const auto [entry, isNew] =
      known_.try_emplace({std::string(data, data + (length > 0 ? length : 0)), width, height});
  if (isNew && length > 0) entry->second = draw(bounds, data, length);
  return entry->second;
}

}  // namespace qz::tools
