// The exported functions: adaptors in which the rooms meet.
#include <algorithm>
#include <cstring>
#include <new>

#include "api/svg_generator.h"
#include "document/document.h"
#include "shapes/shapes.h"
#include "structures/groups.h"
#include "text/escaped_text.h"
#include "text/text_run.h"

using namespace qz;

namespace {

// Runs a call on the page that is being recorded; without one the call does nothing. Memory that is
// exhausted ends here: each call leaves the page as it was or in another consistent state.
template <class Call>
int32_t record(SvgGenerator* generator, Call call) noexcept {
  if (generator == nullptr || !generator->page) return 0;
  try {
    call(*generator->page);
  } catch (...) {
  }
  return 0;
}

// Files a drawn element and marks the current clip region.
template <class Write>
void appendElement(Page& page, Write write) {
  const RegionNumber region = page.clips.current();
  page.content.appendElement(region, write);
  page.clips.markUsed(region);
}

// A shape goes to the newest character of the open block, relative to its position, or else to the
// page with the current paint. `make` builds it for an origin and half a stroke's width.
template <class Make>
int32_t drawShape(SvgGenerator* generator, Make make) noexcept {
  return record(generator, [&](Page& page) {
    if (!page.content.isBlockOpen()) {
      const auto shape = make(POINT{0, 0}, page.paint.current().halfStrokeWidth());
      appendElement(page,
                    [&](MarkupText& out) { writeShape(out, shape, page.paint.attributes()); });
    } else if (page.characters.hasCharacter()) {
      page.characters.addShape(page.content, make(page.characters.position(), 0));
    }
  });
}

// Opaque data may lie at any address: its units are copied to one that suits them.
UnitString copyUnits(const uint8_t* bytes, int64_t count) {
  UnitString units(static_cast<size_t>(std::max<int64_t>(count, 0)), 0);
  if (count > 0) std::memcpy(units.data(), bytes, 2 * units.size());
  return units;
}

template <class Group>
void openGroup(Page& page, const Group& group) {
  const RegionNumber region = page.clips.current();
  page.content.openGroup(region, Group::kEndTag,
                         [&](MarkupText& out) { group.writeStartTag(out); });
  page.clips.markUsed(region);
  page.usesExtensionNamespace = true;
}

int32_t closeGroup(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.content.closeGroup(); });
}

int32_t beginCharacter(SvgGenerator* generator, int32_t reference, const POINT* position) noexcept {
  return record(generator, [&](Page& page) {
    if (page.content.isBlockOpen())
      page.characters.beginCharacter(page.content, *position, reference);
  });
}

// Paint set while invert painting is on is inverted, and leaves its trace in the generator.
template <class Set>
int32_t setPaint(SvgGenerator* generator, Set set) noexcept {
  return record(generator, [&](Page& page) {
    set(page.paint, page.invertPainting);
    if (page.invertPainting) generator->inversion.usesInversion = true;
  });
}

void drawRasterImage(Page& page, ImageFormat format, const RECT& bounds, const uint8_t* data,
                     size_t length, uint16_t quality) {
  const auto id = page.rasterImages.findOrRegister(format, bounds, data, length);
  if (!id) return;
  const Image image{*id, bounds, quality};
  appendElement(page, [&](MarkupText& out) { image.write(out); });
  if (quality != 100) page.usesExtensionNamespace = true;
}

void drawSvgImage(Page& page, const RECT& bounds, const uint8_t* data, size_t length) {
  const auto id = page.svgImages.findOrRegister(bounds, data, length);
  if (!id) return;
  const Symbol symbol{*id, {bounds.left, bounds.top}};
  appendElement(page, [&](MarkupText& out) { symbol.write(out); });
}

// Writes the document and releases the page. A page that is released already gives the document of
// an empty one.
int32_t writeDocument(SvgGenerator& generator) {
  MarkupText document;
  if (generator.page) {
    document = assembleDocument(*generator.page, generator.inversion, generator.extraLength);
  } else {
    Page empty;
    document = assembleDocument(empty, generator.inversion, generator.extraLength);
  }
  generator.document = std::move(document);
  generator.page.reset();
  return documentSize(generator.document.size(), generator.extraLength);
}

}  // namespace

// ---- The page -----------------------------------------------------------------------------------

SvgGenerator* QZSVGGEN_CALL SVG_Create(const RECT* page) noexcept {
  auto* generator = new (std::nothrow) SvgGenerator;
  if (generator != nullptr) generator->page.emplace().rectangle = *page;
  return generator;
}

int32_t QZSVGGEN_CALL SVG_Delete(SvgGenerator* generator) noexcept {
  delete generator;
  return 0;
}

int32_t QZSVGGEN_CALL SVG_GetVersion() noexcept { return 100; }

int32_t QZSVGGEN_CALL SVG_Close(SvgGenerator* generator, SVG_Char* buffer, int32_t size) noexcept {
  if (generator == nullptr) return 0;
  if (buffer == nullptr) {
    try {
      return writeDocument(*generator);
    } catch (...) {
      return 0;
    }
  }
  MarkupText& document = generator->document;
  if (size != documentSize(document.size(), generator->extraLength)) return 0;
  document.copyTo(buffer);
  buffer[document.size()] = 0;
  document.clear();
  return 0;
}

// ---- Fill and stroke ----------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_SetFill(SvgGenerator* generator, uint8_t alpha, uint8_t red,
                                  uint8_t green, uint8_t blue) noexcept {
  return setPaint(generator, [&](PaintState& paint, bool inverted) {
    paint.setFill({red, green, blue, alpha}, inverted);
  });
}

int32_t QZSVGGEN_CALL SVG_SetStroke(SvgGenerator* generator, uint8_t alpha, uint8_t red,
                                    uint8_t green, uint8_t blue, uint32_t width) noexcept {
  return setPaint(generator, [&](PaintState& paint, bool inverted) {
    paint.setStroke({red, green, blue, alpha}, width, inverted);
  });
}

int32_t QZSVGGEN_CALL SVG_ClearStroke(SvgGenerator* generator) noexcept {
  return setPaint(generator,
                  [](PaintState& paint, bool inverted) { paint.setStroke({}, 0, inverted); });
}

// ---- Inversion ----------------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_BeginInvertPainting(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.invertPainting = true; });
}

int32_t QZSVGGEN_CALL SVG_EndInvertPainting(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.invertPainting = false; });
}

int32_t QZSVGGEN_CALL SVG_InvertPath(SvgGenerator* generator, const POINT* points,
                                     const uint8_t* types, uint32_t count) noexcept {
  return record(generator, [&](Page&) {
    generator->inversion.invertPath({points, types, count, {0, 0}});
  });
}

int32_t QZSVGGEN_CALL SVG_InvertRectangle(SvgGenerator* generator, const RECT* rectangle) noexcept {
  return record(generator, [&](Page& page) { page.invertedRegions.add(*rectangle); });
}

// ---- Shapes -------------------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_DrawLine(SvgGenerator* generator, const POINT* from,
                                   const POINT* to) noexcept {
  return drawShape(generator, [=](const POINT& origin, int32_t) {
    return Line{*from, *to, origin};
  });
}

int32_t QZSVGGEN_CALL SVG_DrawRectangle(SvgGenerator* generator, const RECT* rectangle) noexcept {
  return drawShape(generator, [=](const POINT& origin, int32_t halfStrokeWidth) {
    return Rect{*rectangle, 0, 0, 0, halfStrokeWidth, origin};
  });
}

int32_t QZSVGGEN_CALL SVG_DrawRoundedRectangle(SvgGenerator* generator, const RECT* rectangle,
                                               uint32_t cornerWidth, uint32_t cornerHeight,
                                               uint16_t cornerMask) noexcept {
  return drawShape(generator, [=](const POINT& origin, int32_t halfStrokeWidth) {
    return Rect{*rectangle, cornerWidth, cornerHeight, cornerMask, halfStrokeWidth, origin};
  });
}

int32_t QZSVGGEN_CALL SVG_DrawPolyline(SvgGenerator* generator, const POINT* points,
                                       uint32_t count) noexcept {
  if (count == 0) return 0;
  return drawShape(generator, [=](const POINT& origin, int32_t) {
    return qz::Polyline{points, count, origin};  // Windows has functions of these names
  });
}

int32_t QZSVGGEN_CALL SVG_DrawPolygon(SvgGenerator* generator, const POINT* points,
                                      uint32_t count) noexcept {
  if (count == 0) return 0;
  return drawShape(generator, [=](const POINT& origin, int32_t) {
    return qz::Polygon{{points, count, origin}};
  });
}

int32_t QZSVGGEN_CALL SVG_DrawPath(SvgGenerator* generator, const POINT* points,
                                   const uint8_t* types, uint32_t count) noexcept {
  return drawShape(generator, [=](const POINT& origin, int32_t) {
    return Path{points, types, count, origin};
  });
}

// ---- Text ---------------------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_SetFont(SvgGenerator* generator, const SVG_Char* family,
                                  uint32_t familyLength, int32_t size, int32_t italic,
                                  int32_t bold) noexcept {
  return record(generator, [&](Page& page) {
    const EscapedText escapedFamily(family, static_cast<int32_t>(familyLength));
    page.fonts.set(escapedFamily.view(), size, italic != 0, bold != 0);
  });
}

int32_t QZSVGGEN_CALL SVG_ClearFont(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.fonts.clear(); });
}

int32_t QZSVGGEN_CALL SVG_DrawText(SvgGenerator* generator, const SVG_Char* text, int32_t length,
                                   const POINT* origin, const int32_t* advances,
                                   uint32_t characterScaling) noexcept {
  if (length < 1) return 0;
  return record(generator, [&](Page& page) {
    const EscapedText escapedText(text, length);
    const FontNumber font = page.fonts.current();
    const Text run{escapedText.view(), *origin, advances, length, font, characterScaling};
    appendElement(page, [&](MarkupText& out) { run.write(out, page.paint.attributes()); });
    page.fonts.markUsed(font);
    if (run.isScaled()) page.usesExtensionNamespace = true;
  });
}

// ---- Text as outlines ---------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_BeginCharacterBlock(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) {
    if (page.content.isBlockOpen()) page.characters.end(page.content);
    const RegionNumber region = page.clips.current();
    page.characters.begin(page.content, region, page.paint.attributes());
    page.clips.markUsed(region);
  });
}

int32_t QZSVGGEN_CALL SVG_EndCharacterBlock(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) {
    if (page.content.isBlockOpen()) page.characters.end(page.content);
  });
}

int32_t QZSVGGEN_CALL SVG_BeginCharacter(SvgGenerator* generator, const POINT* position) noexcept {
  return beginCharacter(generator, -1, position);
}

int32_t QZSVGGEN_CALL SVG_EndCharacter(SvgGenerator*) noexcept { return 0; }

int32_t QZSVGGEN_CALL SVG_SetCharacterReference(SvgGenerator* generator, uint32_t reference,
                                                const POINT* position) noexcept {
  return beginCharacter(generator, static_cast<int32_t>(reference), position);
}

// ---- Pictures -----------------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_DrawImage(SvgGenerator* generator, uint16_t format, const RECT* bounds,
                                    const uint8_t* data, int32_t length,
                                    uint16_t quality) noexcept {
  if (length <= 0) return 0;
  return record(generator, [&](Page& page) {
    const auto size = static_cast<size_t>(length);
    if (format == SVG_IMAGE_SVG)
      drawSvgImage(page, *bounds, data, size);
    else
      drawRasterImage(page, static_cast<ImageFormat>(format), *bounds, data, size, quality);
  });
}

// ---- Clip regions -------------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_BeginClippingRegion(SvgGenerator* generator,
                                              const RECT* rectangle) noexcept {
  return record(generator, [&](Page& page) { page.clips.begin(*rectangle); });
}

int32_t QZSVGGEN_CALL SVG_AddClippingRegion(SvgGenerator* generator,
                                            const RECT* rectangle) noexcept {
  return record(generator, [&](Page& page) { page.clips.add(*rectangle); });
}

int32_t QZSVGGEN_CALL SVG_ExcludeClippingRegion(SvgGenerator* generator,
                                                const RECT* rectangle) noexcept {
  return record(generator, [&](Page& page) { page.clips.exclude(*rectangle, page.rectangle); });
}

int32_t QZSVGGEN_CALL SVG_EndClippingRegion(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.clips.end(); });
}

int32_t QZSVGGEN_CALL SVG_GetCurrentClippingRegion(SvgGenerator* generator) noexcept {
  return generator != nullptr && generator->page ? generator->page->clips.current() : kNoRegion;
}

int32_t QZSVGGEN_CALL SVG_SetCurrentClippingRegion(SvgGenerator* generator,
                                                   uint32_t region) noexcept {
  return generator != nullptr && generator->page && generator->page->clips.select(region) ? 0 : 1;
}

// ---- Document structures ------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_BeginFormField(SvgGenerator* generator, uint16_t fieldType,
                                         uint8_t fieldFlags, uint8_t exFieldFlags,
                                         const RECT* bounds, const SVG_Char* name,
                                         int32_t nameLength, const void* typeData,
                                         int32_t typeDataSize) noexcept {
  return record(generator, [&](Page& page) {
    const auto* bytes = static_cast<const uint8_t*>(typeData);
    int64_t size = typeDataSize;
    uint64_t date = 0;
    const bool isDate = fieldType == SVG_FIELD_DATE;
    if (isDate) {  // the number is read whatever the size says
      for (int i = 7; i >= 0; --i) date = date << 8 | bytes[i];
      bytes += 8;
      size -= 8;
    }
    const EscapedText escapedName(name, nameLength);
    const UnitString data = copyUnits(bytes, size / 2);
    const EscapedText escapedData(data.data(), static_cast<int64_t>(data.size()));
    openGroup(page, FormField{fieldType, fieldFlags, exFieldFlags, *bounds, escapedName.view(),
                              isDate ? &date : nullptr, escapedData.view()});
  });
}

int32_t QZSVGGEN_CALL SVG_EndFormField(SvgGenerator* generator) noexcept {
  return closeGroup(generator);
}

int32_t QZSVGGEN_CALL SVG_BeginLink(SvgGenerator* generator, uint16_t linkType,
                                    const SVG_Char* target, int32_t targetLength) noexcept {
  return record(generator, [&](Page& page) {
    const EscapedText escapedTarget(target, targetLength);
    openGroup(page, Link{linkType, escapedTarget.view()});
  });
}

int32_t QZSVGGEN_CALL SVG_EndLink(SvgGenerator* generator) noexcept {
  return closeGroup(generator);
}

int32_t QZSVGGEN_CALL SVG_SetDocumentTarget(SvgGenerator* generator, const POINT* position,
                                            const SVG_Char* name, int32_t nameLength) noexcept {
  return record(generator, [&](Page& page) {
    const EscapedText escapedName(name, nameLength);
    const DocumentTarget target{*position, escapedName.view()};
    appendElement(page, [&](MarkupText& out) { target.write(out); });
    page.usesExtensionNamespace = true;
  });
}

int32_t QZSVGGEN_CALL SVG_BeginSignatureField(SvgGenerator* generator, const RECT* bounds,
                                              const SVG_Char* name, int32_t nameLength,
                                              const SVG_Char* infoData,
                                              int32_t infoDataSize) noexcept {
  return record(generator, [&](Page& page) {
    const EscapedText escapedName(name, nameLength);
    const EscapedText escapedInfo(infoData, infoDataSize / 2);
    openGroup(page, SignatureField{*bounds, escapedName.view(), escapedInfo.view()});
  });
}

int32_t QZSVGGEN_CALL SVG_EndSignatureField(SvgGenerator* generator) noexcept {
  return closeGroup(generator);
}
