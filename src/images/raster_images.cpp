#include "images/raster_images.h"

#include "base/portability.h"
#include "base/wrapping.h"
#include "images/base64.h"

namespace qz {
namespace {

constexpr uint32_t kReservedKey = 0xFFFFFFFF;

constexpr uint32_t power31(int exponent) { return exponent == 0 ? 1 : 31 * power31(exponent - 1); }

// Of eight bytes, the first one lowest: pairs, then fours are made at once, side by side.
uint32_t keyOfEight(uint64_t bytes) {
  constexpr uint64_t kEvenBytes = 0x00FF00FF00FF00FF, kEvenPairs = 0x0000FFFF0000FFFF;
  const uint64_t pairs = (bytes & kEvenBytes) * power31(1) + (bytes >> 8 & kEvenBytes);
  const uint64_t fours = (pairs & kEvenPairs) * power31(2) + (pairs >> 16 & kEvenPairs);
  return static_cast<uint32_t>(fours) * power31(4) + static_cast<uint32_t>(fours >> 32);
}

// h * 31 + byte over all bytes, modulo 2^32.
uint32_t contentKey(const uint8_t* bytes, size_t size) {
  uint32_t key = 0;
  for (; size >= 8; size -= 8, bytes += 8) key = key * power31(8) + keyOfEight(loadEight(bytes));
  for (; size > 0; --size) key = key * 31 + *bytes++;
  return key;
}

std::string_view dataUriPrefix(uint16_t format) {
  switch (format) {
    case SVG_IMAGE_PNG:
      return "data:image/png;base64,";
    case SVG_IMAGE_JPEG:
      return "data:image/jpeg;base64,";
    default:
      return {};
  }
}

}  // namespace

void Image::write(MarkupText& out) const {
  out.append("<use xlink:href=\"#QZ_I", id, "\" x=\"", bounds.left, "\" y=\"", bounds.top,
             "\" width=\"", wrappingSubtract(bounds.right, bounds.left), "\" height=\"",
             wrappingSubtract(bounds.bottom, bounds.top), "\"");
  if (usesExtensionNamespace())
    out.append(" velumark:compressionQuality=\"", compressionQuality, "\"");
  out.append("/>");
}

std::optional<uint32_t> RasterImages::findOrRegister(uint16_t format, const RECT& bounds,
                                                     const uint8_t* bytes, size_t size) {
  if (repeated_.equal(bytes, size)) return repeatedId_;
  const uint32_t key = contentKey(bytes, size);
  if (key == kReservedKey) return std::nullopt;
  if (const auto known = index_.find(key)) {
    repeated_.remember(bytes, size);
    repeatedId_ = *known;
    return known;
  }
  const std::string_view prefix = dataUriPrefix(format);
  if (prefix.empty()) return count_;

  const int32_t width = wrappingSubtract(bounds.right, bounds.left);
  const int32_t height = wrappingSubtract(bounds.bottom, bounds.top);
  index_.makeRoom();
  symbols_.appendWhole([&](MarkupText& out) {
    out.append("<symbol id=\"QZ_I", count_, "\" viewBox=\"0 0 ", width, " ", height,
               "\"><image width=\"", width, "\" height=\"", height, "\" xlink:href=\"", prefix);
    appendBase64(out, bytes, size);
    out.append("\"/></symbol>");
  });
  index_.insert(key, count_);
  return count_++;
}

}  // namespace qz
