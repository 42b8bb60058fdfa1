// What Page writes around its content: the template of the finished document.
#include <stdexcept>

#include "base/wrapping.h"
#include "page/page.h"

namespace qz {

// The root's start tag, and the definitions up to the clip paths.
MarkupText Page::writeStart() const {
  MarkupText out;
  out.append(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\"");
  if (usesExtensionNamespace_) out.append(" xmlns:velumark=\"urn:velumark:svg:1\"");
  out.append(" width=\"", wrappingSubtract(rectangle_.right, rectangle_.left), "\" height=\"",
             wrappingSubtract(rectangle_.bottom, rectangle_.top), "\">");
  out.append("<defs>");
  clips.write(out);
  return out;
}

// The definitions after the pictures, and what begins the content.
MarkupText Page::writeMiddle() const {
  MarkupText out;
  fonts.write(out);
  inversion_.writeDefinitions(out);
  invertedRegions_.writeFilters(out);
  out.append("</defs>");
  invertedRegions_.writeContentStart(out);
  return out;
}

MarkupText Page::writeEnd() const {
  MarkupText out;
  content_.writeEnd(out);
  inversion_.writeUse(out);
  invertedRegions_.writeContentEnd(out);
  out.append("</svg>");
  return out;
}

MarkupText Page::takeDocument(size_t maxLength) && {
  MarkupText document = writeStart();
  MarkupText middle = writeMiddle();
  MarkupText blockEnd;
  if (content_.isBlockOpen()) blocks_.writeEnd(blockEnd);
  MarkupText end = writeEnd();

  MarkupText* const parts[] = {&rasterImages_.symbols(), &svgImages_.contents(),
                               &svgImages_.symbols(),    &middle,
                               &content_.blockText(),    &blockEnd,
                               &content_.text(),         &end};
  size_t length = document.size();
  for (const MarkupText* part : parts) length += part->size();
  if (length > maxLength) throw std::length_error("document too long");
  for (MarkupText* part : parts) document.join(*part);
  return document;
}

}  // namespace qz
