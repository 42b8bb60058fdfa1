#include "document/document.h"

#include <limits>
#include <stdexcept>

#include "markup/wrapping.h"

namespace qz {
namespace {

// The root's start tag, and the definitions up to the clip paths.
MarkupText writeStart(const Page& page) {
  MarkupText out;
  out.append(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\"");
  if (page.usesExtensionNamespace) out.append(" xmlns:velumark=\"urn:velumark:svg:1\"");
  out.append(" width=\"", wrappingSubtract(page.rectangle.right, page.rectangle.left),
             "\" height=\"", wrappingSubtract(page.rectangle.bottom, page.rectangle.top), "\">");
  out.append("<defs>");
  page.clips.write(out);
  return out;
}

// The definitions behind the pictures, and what begins the content.
MarkupText writeMiddle(const Page& page, const InversionTrace& inversion) {
  MarkupText out;
  page.fonts.write(out);
  inversion.writeDefinitions(out);
  page.invertedRegions.writeFilters(out);
  out.append("</defs>");
  page.invertedRegions.writeContentStart(out);
  return out;
}

MarkupText writeBlockEnd(const Page& page) {
  MarkupText out;
  if (page.content.isBlockOpen()) page.characters.writeEnd(out);
  return out;
}

MarkupText writeEnd(const Page& page, const InversionTrace& inversion) {
  MarkupText out;
  page.content.writeEnd(out);
  inversion.writeUse(out);
  page.invertedRegions.writeContentEnd(out);
  out.append("</svg>");
  return out;
}

}  // namespace

MarkupText assembleDocument(Page& page, const InversionTrace& inversion, int32_t extraLength) {
  MarkupText document = writeStart(page);
  MarkupText middle = writeMiddle(page, inversion);
  MarkupText blockEnd = writeBlockEnd(page);
  MarkupText end = writeEnd(page, inversion);

  const uint64_t length = document.size() + page.rasterImages.size() + page.svgImages.size() +
                          middle.size() + page.content.size() + blockEnd.size() + end.size();
  if (documentSize(length, extraLength) == 0) throw std::length_error("document too long");

  document.splice(page.rasterImages.takeSymbols());
  document.splice(page.svgImages.takeContents());
  document.splice(page.svgImages.takeSymbols());
  document.splice(std::move(middle));
  document.splice(page.content.takeText());
  document.splice(std::move(blockEnd));
  document.splice(page.content.takeTextBehindBlock());
  document.splice(std::move(end));
  return document;
}

int32_t documentSize(uint64_t length, int32_t extraLength) {
  constexpr uint64_t kLargest = std::numeric_limits<int32_t>::max();
  const auto extra = static_cast<uint64_t>(extraLength) + 1;
  return length > kLargest - extra ? 0 : static_cast<int32_t>(length + extra);
}

}  // namespace qz
