#include "images/svg_image.h"

#include <iterator>
#include <utility>

namespace qz {
namespace {

// Where the parts are: the root start tag from its "<" to its ">", the inside up to the end tag.
struct Cut {
  size_t tagStart;
  size_t insideStart;
  size_t insideLength;
};

template <class Character>
bool isSpace(Character character) {
  return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

template <class Character>
std::optional<Cut> cut(std::basic_string_view<Character> text) {
  constexpr Character kRoot[] = {'<', 's', 'v', 'g'};
  constexpr Character kEnd[] = {'<', '/', 's', 'v', 'g', '>'};
  constexpr auto kNone = text.npos;

  size_t tag = text.find(kRoot, 0, std::size(kRoot));
  while (tag != kNone && !(tag + 4 < text.size() && isSpace(text[tag + 4])))
    tag = text.find(kRoot, tag + 1, std::size(kRoot));
  if (tag == kNone) return std::nullopt;
  const size_t tagEnd = text.find(Character{'>'}, tag + 5);
  if (tagEnd == kNone) return std::nullopt;
  const size_t inside = tagEnd + 1;
  const size_t end = text.rfind(kEnd, kNone, std::size(kEnd));
  if (end == kNone || end < inside) return std::nullopt;
  return Cut{tag, inside, end - inside};
}

// The root start tag; the white space behind "<svg" is one space.
template <class Character>
Utf16String rootTag(std::basic_string_view<Character> text, const Cut& cut) {
  const auto tag = text.substr(cut.tagStart, cut.insideStart - cut.tagStart);
  Utf16String units(tag.begin(), tag.end());
  units[4] = ' ';
  return units;
}

}  // namespace

std::optional<SvgImage> parseSvgImage(const uint8_t* bytes, size_t size) {
  SvgText text(bytes, size);
  const auto found = text.isAscii() ? cut(text.ascii()) : cut(text.units());
  if (!found) return std::nullopt;
  const auto tag = text.isAscii() ? rootTag(text.ascii(), *found) : rootTag(text.units(), *found);
  return SvgImage{std::move(text), parseSvgRoot(tag), found->insideStart, found->insideLength};
}

}  // namespace qz
