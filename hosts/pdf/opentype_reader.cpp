#include "opentype.h"
#include "svg_markup.h"

namespace qz::pdf {
namespace {

// Bytes that may be any. Beyond their end they are 0.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  uint32_t u8(size_t at) const { return at < bytes_.size() ? static_cast<uint8_t>(bytes_[at]) : 0; }
  uint32_t u16(size_t at) const { return u8(at) << 8 | u8(at + 1); }
  int s16(size_t at) const { return static_cast<int16_t>(u16(at)); }
  uint32_t u32(size_t at) const { return u16(at) << 16 | u16(at + 2); }
  std::string_view part(size_t at, size_t size) const {
    return bytes_.substr(std::min(at, bytes_.size()), size);
  }

 private:
  std::string_view bytes_;
};

Reader tableOf(const Reader& file, std::string_view tag) {
  for (size_t i = 0, entry = 12; i < file.u16(4); ++i, entry += 16)
    if (file.part(entry, 4) == tag)
      return Reader(file.part(file.u32(entry + 8), file.u32(entry + 12)));
  return Reader("");
}

// The first so many characters.
std::vector<char16_t> charactersOf(const Reader& cmap, size_t count) {
  std::vector<char16_t> characters;
  const size_t size = cmap.u16(18), lasts = 26, firsts = lasts + size + 2;
  for (size_t range = 0; range < size; range += 2)
    for (uint32_t c = cmap.u16(firsts + range), last = cmap.u16(lasts + range);
         c <= last && characters.size() < count; ++c)
      characters.push_back(static_cast<char16_t>(c));
  return characters;
}

}  // namespace

// What the writer puts at a fixed place is read there. That it is a file of the writer's form shows
// in the end: the font would be written like that.
std::optional<Font> fontOf(std::string_view address) {
  if (!address.starts_with(fontAddressStart)) return std::nullopt;
  const std::string bytes = fromBase64(address.substr(fontAddressStart.size()));
  const Reader file(bytes), cff = tableOf(file, "CFF "), head = tableOf(file, "head");
  const Reader widths = tableOf(file, "hmtx");
  const size_t outlines = cff.u32(34), count = cff.u16(outlines), offsets = outlines + 3;
  if (count < 2 || count > maxFontGlyphs + 2) return std::nullopt;

  Font font;
  size_t glyph = 0;  // 0 is that of no character
  for (const char16_t character : charactersOf(tableOf(file, "cmap"), count - 1)) {
    const size_t entry = offsets + 4 * ++glyph;
    const size_t start = cff.u32(entry), size = cff.u32(entry + 4) - start;
    const std::string_view outline = cff.part(offsets + 4 * count + 3 + start, size);
    font.glyphs[character] = {std::string(outline), static_cast<int>(widths.u16(4 * glyph)),
                              widths.s16(4 * glyph + 2)};
  }
  const auto side = [&](size_t at) { return static_cast<float>(head.s16(at)); };
  font.bounds = {side(36), side(38), side(40), side(42)};
  if (font.glyphs.empty() || fontAddress(font) != address) return std::nullopt;
  return font;
}

}  // namespace qz::pdf
