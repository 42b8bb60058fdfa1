#include "images/svg_images.h"

#include "base/make_room.h"
#include "base/wrapping.h"
#include "images/svg_text.h"
#include "markup/content_hash.h"
#include "markup/fraction.h"
#include "shapes/path_data.h"

namespace qz {
namespace {

constexpr float kUnknownLength = 500;

// The root start tag; the white space behind "<svg" is one space.
template <class View>
Utf16String rootTag(View text, const SvgCut& cut) {
  const View tag = text.substr(cut.tagStart, cut.insideStart - cut.tagStart);
  Utf16String units(tag.begin(), tag.end());
  units[4] = ' ';
  return units;
}

}  // namespace

void Symbol::write(MarkupText& out) const {
  out.append("<use xlink:href=\"#QZ_S", id, "\" transform=\"translate(", CoordinatePair(origin),
             ")\"/>");
}

std::optional<uint32_t> SvgImages::findOrRegister(const RECT& bounds, const uint8_t* bytes,
                                                  size_t size) {
  if (repeated_.equal(bytes, size)) return findOrRegisterSymbol(repeatedPicture_, bounds);
  std::optional<Picture> picture = parseSvgImage(bytes, size);
  if (!picture) return std::nullopt;
  const uint32_t symbol = findOrRegisterSymbol(*picture, bounds);
  if (picture->isKnown) {
    repeated_.remember(bytes, size);
    repeatedPicture_ = std::move(*picture);
  }
  return symbol;
}

std::optional<SvgImages::Picture> SvgImages::parseSvgImage(const uint8_t* bytes, size_t size) {
  return SvgText(bytes, size).visit([this](auto text) { return registerContent(text); });
}

template <class View>
std::optional<SvgImages::Picture> SvgImages::registerContent(View text) {
  const std::optional<SvgCut> cut = cutSvg(text);
  if (!cut) return std::nullopt;
  const View inside = text.substr(cut->insideStart, cut->insideLength);
  Picture picture{parseSvgRoot(rootTag(text, *cut)), 0, 0, false};

  ContentHash hash;
  hash.add(std::string_view("<g "));
  hash.add(Utf16View(picture.root.others));
  hash.add(std::string_view(">"));
  hash.add(inside);
  hash.add(std::string_view("</g>"));
  picture.contentHash = static_cast<uint32_t>(hash.value());
  if (const auto known = contentIndex_.find(picture.contentHash)) {
    picture.contentId = *known;
    picture.isKnown = true;
    return picture;
  }

  contentIndex_.makeRoom();
  contents_.appendWhole([&](MarkupText& out) {
    out.append("<g id=\"QZ_G", contentCount_, "\"><g ");
    out.appendText(Utf16View(picture.root.others));
    out.append(">");
    out.appendText(inside);
    out.append("</g></g>");
  });
  contentIndex_.insert(picture.contentHash, contentCount_);
  picture.contentId = contentCount_++;
  return picture;
}

// The attributes that give a placement its size. The picture's own size counts only when it has no
// viewBox.
void SvgImages::writeSizing(const SvgRootAttributes& root, const RECT& bounds) {
  const int32_t width = wrappingSubtract(bounds.right, bounds.left);
  const int32_t height = wrappingSubtract(bounds.bottom, bounds.top);
  sizing_.restart();
  sizing_.append(" width=\"", width, "\" height=\"", height, "\" viewBox=\"");
  if (root.viewBox.empty())
    sizing_.append("0 0 ", Fraction(parseSvgLength(root.width, width).value_or(kUnknownLength)),
                   " ", Fraction(parseSvgLength(root.height, height).value_or(kUnknownLength)));
  else
    sizing_.appendText(Utf16View(root.viewBox));
  sizing_.append("\"");
}

uint32_t SvgImages::findOrRegisterSymbol(const Picture& picture, const RECT& bounds) {
  writeSizing(picture.root, bounds);
  ContentHash hash;
  hash.add(sizing_);
  const SymbolKey wanted{hash.value(), picture.contentHash};
  const uint64_t key = wanted.sizingHash ^ uint64_t { wanted.contentHash } << 32;
  const auto known = symbolIndex_.find(key, [&](HashIndex::Number number) {
    return symbolKeys_[number].sizingHash == wanted.sizingHash &&
           symbolKeys_[number].contentHash == wanted.contentHash;
  });
  if (known) return *known;

  const auto id = static_cast<uint32_t>(symbolKeys_.size());
  symbolIndex_.makeRoom();
  makeRoom(symbolKeys_);
  symbols_.appendWhole([&](MarkupText& out) {
    out.append("<symbol id=\"QZ_S", id, "\"");
    out.appendText(sizing_);
    out.append("><use xlink:href=\"#QZ_G", picture.contentId, "\"/></symbol>");
  });
  symbolKeys_.push_back(wanted);
  symbolIndex_.insert(key, id);
  return id;
}

}  // namespace qz
