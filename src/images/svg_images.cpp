#include "images/svg_images.h"

#include "base/make_room.h"
#include "base/wrapping.h"
#include "markup/content_hash.h"
#include "markup/fraction.h"
#include "shapes/path_data.h"

namespace qz {
namespace {

constexpr float kUnknownLength = 500;

// The whole content, as which it is known.
uint32_t hashContent(const SvgImage& image) {
  ContentHash hash;
  hash.add(std::string_view("<g "));
  hash.add(Utf16View(image.root.others));
  hash.add(std::string_view(">"));
  hash.add(image.insideAscii());
  hash.add(image.insideUnits());
  hash.add(std::string_view("</g>"));
  return static_cast<uint32_t>(hash.value());
}

// The attributes that give a placement its size. The picture's own size counts only when it has no
// viewBox.
void writeSizing(MarkupText& out, const SvgRootAttributes& root, const RECT& bounds) {
  const int32_t width = wrappingSubtract(bounds.right, bounds.left);
  const int32_t height = wrappingSubtract(bounds.bottom, bounds.top);
  out.append(" width=\"", width, "\" height=\"", height, "\" viewBox=\"");
  if (root.viewBox.empty())
    out.append("0 0 ", Fraction(parseSvgLength(root.width, width).value_or(kUnknownLength)), " ",
               Fraction(parseSvgLength(root.height, height).value_or(kUnknownLength)));
  else
    out.appendText(Utf16View(root.viewBox));
  out.append("\"");
}

}  // namespace

void Symbol::write(MarkupText& out) const {
  out.append("<use xlink:href=\"#QZ_S", id, "\" transform=\"translate(", CoordinatePair(origin),
             ")\"/>");
}

std::optional<uint32_t> SvgImages::findOrRegister(const RECT& bounds, const uint8_t* bytes,
                                                  size_t size) {
  if (repeated_.equal(bytes, size)) return findOrRegisterSymbol(repeatedPicture_, bounds);
  std::optional<SvgImage> image = parseSvgImage(bytes, size);
  if (!image) return std::nullopt;
  const uint32_t hash = hashContent(*image);
  const auto known = contentIndex_.find(hash);
  const uint32_t id = known ? *known : registerContent(*image, hash);
  Picture picture{std::move(image->root), hash, id};
  const uint32_t symbol = findOrRegisterSymbol(picture, bounds);
  if (known) {
    repeated_.remember(bytes, size);
    repeatedPicture_ = std::move(picture);
  }
  return symbol;
}

uint32_t SvgImages::registerContent(const SvgImage& image, uint32_t contentHash) {
  contentIndex_.makeRoom();
  contents_.appendWhole([&](MarkupText& out) {
    out.append("<g id=\"QZ_G", contentCount_, "\"><g ");
    out.appendText(Utf16View(image.root.others));
    out.append(">");
    out.appendText(image.insideAscii());
    out.appendText(image.insideUnits());
    out.append("</g></g>");
  });
  contentIndex_.insert(contentHash, contentCount_);
  return contentCount_++;
}

uint32_t SvgImages::findOrRegisterSymbol(const Picture& picture, const RECT& bounds) {
  sizing_.restart();
  writeSizing(sizing_, picture.root, bounds);
  ContentHash hash;
  hash.add(sizing_);
  const SymbolKey wanted{hash.value(), picture.contentHash};
  // Mixed with a secret: else pairs could be chosen that share a key.
  const uint64_t secret = secretOf(this);
  const uint64_t key = foldedProduct(wanted.sizingHash ^ secret, wanted.contentHash ^ ~secret);
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
