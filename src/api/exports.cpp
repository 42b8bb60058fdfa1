// The exported functions: adaptors between the C interface and the page.
#include <new>
#include <utility>

#include "api/svg_generator.h"
#include "shapes/shapes.h"
#include "structures/groups.h"

using namespace qz;

namespace {

// Runs a call on the page that is being recorded; without one the call does nothing, and reads none
// of its arguments. Memory that is exhausted ends here: see Page for what it leaves.
template <class Call>
int32_t record(SvgGenerator* generator, Call call) noexcept {
  if (generator == nullptr || !generator->page) return 0;
  try {
    call(*generator->page);
  } catch (...) {
  }
  return 0;
}

int32_t draw(SvgGenerator* generator, const Shape& shape) noexcept {
  return record(generator, [&](Page& page) { page.draw(shape); });
}

int32_t closeGroup(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.closeGroup(); });
}

// Writes the document and releases the page. A generator without a page writes the document of an
// empty one.
int32_t writeDocument(SvgGenerator& generator) {
  const size_t maxLength = generator.maxDocumentLength();
  generator.document = generator.page
                           ? std::move(*generator.page).takeDocument(maxLength)
                           : Page({0, 0, 0, 0}, generator.inversion).takeDocument(maxLength);
  generator.page.reset();
  return generator.documentSize();
}

}  // namespace

// ---- The page -----------------------------------------------------------------------------------

SvgGenerator* QZSVGGEN_CALL SVG_Create(const RECT* page) noexcept {
  return new (std::nothrow) SvgGenerator(*page);
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
  if (size != generator->documentSize()) return 0;
  MarkupText& document = generator->document;
  document.copyTo(buffer);
  buffer[document.size()] = 0;
  document.clear();
  return 0;
}

// ---- Fill and stroke ----------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_SetFill(SvgGenerator* generator, uint8_t alpha, uint8_t red,
                                  uint8_t green, uint8_t blue) noexcept {
  return record(generator, [=](Page& page) { page.setFill({red, green, blue, alpha}); });
}

int32_t QZSVGGEN_CALL SVG_SetStroke(SvgGenerator* generator, uint8_t alpha, uint8_t red,
                                    uint8_t green, uint8_t blue, uint32_t width) noexcept {
  return record(generator, [=](Page& page) { page.setStroke({red, green, blue, alpha}, width); });
}

int32_t QZSVGGEN_CALL SVG_ClearStroke(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.setStroke({}, 0); });
}

// ---- Inversion ----------------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_BeginInvertPainting(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.setInvertPainting(true); });
}

int32_t QZSVGGEN_CALL SVG_EndInvertPainting(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.setInvertPainting(false); });
}

int32_t QZSVGGEN_CALL SVG_InvertPath(SvgGenerator* generator, const POINT* points,
                                     const uint8_t* types, uint32_t count) noexcept {
  return record(generator, [=](Page& page) { page.invertPath(Path(points, types, count)); });
}

int32_t QZSVGGEN_CALL SVG_InvertRectangle(SvgGenerator* generator, const RECT* rectangle) noexcept {
  return record(generator, [=](Page& page) { page.invertRectangle(*rectangle); });
}

// ---- Shapes -------------------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_DrawLine(SvgGenerator* generator, const POINT* from,
                                   const POINT* to) noexcept {
  return draw(generator, Line(from, to));
}

int32_t QZSVGGEN_CALL SVG_DrawRectangle(SvgGenerator* generator, const RECT* rectangle) noexcept {
  return draw(generator, Rect(rectangle));
}

int32_t QZSVGGEN_CALL SVG_DrawRoundedRectangle(SvgGenerator* generator, const RECT* rectangle,
                                               uint32_t cornerWidth, uint32_t cornerHeight,
                                               uint16_t cornerMask) noexcept {
  return draw(generator, Rect(rectangle, cornerWidth, cornerHeight, cornerMask));
}

int32_t QZSVGGEN_CALL SVG_DrawPolyline(SvgGenerator* generator, const POINT* points,
                                       uint32_t count) noexcept {
  return count == 0 ? 0 : draw(generator, PointList(kPolylineTag, points, count));
}

int32_t QZSVGGEN_CALL SVG_DrawPolygon(SvgGenerator* generator, const POINT* points,
                                      uint32_t count) noexcept {
  return count == 0 ? 0 : draw(generator, PointList(kPolygonTag, points, count));
}

int32_t QZSVGGEN_CALL SVG_DrawPath(SvgGenerator* generator, const POINT* points,
                                   const uint8_t* types, uint32_t count) noexcept {
  return draw(generator, Path(points, types, count));
}

// ---- Text ---------------------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_SetFont(SvgGenerator* generator, const SVG_Char* family,
                                  uint32_t familyLength, int32_t size, int32_t italic,
                                  int32_t bold) noexcept {
  return record(generator, [=](Page& page) {
    page.fonts.set(family, static_cast<int32_t>(familyLength), size, italic != 0, bold != 0);
  });
}

int32_t QZSVGGEN_CALL SVG_ClearFont(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.fonts.clear(); });
}

int32_t QZSVGGEN_CALL SVG_DrawText(SvgGenerator* generator, const SVG_Char* text, int32_t length,
                                   const POINT* origin, const int32_t* advances,
                                   uint32_t characterScaling) noexcept {
  if (length < 1) return 0;
  return record(generator, [=](Page& page) {
    page.drawText(text, length, *origin, advances, characterScaling);
  });
}

// ---- Text as outlines ---------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_BeginCharacterBlock(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.beginBlock(); });
}

int32_t QZSVGGEN_CALL SVG_EndCharacterBlock(SvgGenerator* generator) noexcept {
  return record(generator, [](Page& page) { page.endBlock(); });
}

int32_t QZSVGGEN_CALL SVG_BeginCharacter(SvgGenerator* generator, const POINT* position) noexcept {
  return record(generator, [=](Page& page) { page.beginCharacter(position); });
}

int32_t QZSVGGEN_CALL SVG_EndCharacter(SvgGenerator*) noexcept { return 0; }

int32_t QZSVGGEN_CALL SVG_SetCharacterReference(SvgGenerator* generator, uint32_t reference,
                                                const POINT* position) noexcept {
  return record(generator, [=](Page& page) { page.beginCharacter(position, reference); });
}

// ---- Pictures -----------------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_DrawImage(SvgGenerator* generator, uint16_t format, const RECT* bounds,
                                    const uint8_t* data, int32_t length,
                                    uint16_t quality) noexcept {
  if (length < 1) return 0;
  return record(generator, [=](Page& page) {
    page.drawPicture(format, *bounds, data, static_cast<size_t>(length), quality);
  });
}

// ---- Clip regions -------------------------------------------------------------------------------

int32_t QZSVGGEN_CALL SVG_BeginClippingRegion(SvgGenerator* generator,
                                              const RECT* rectangle) noexcept {
  return record(generator, [=](Page& page) { page.clips.begin(*rectangle); });
}

int32_t QZSVGGEN_CALL SVG_AddClippingRegion(SvgGenerator* generator,
                                            const RECT* rectangle) noexcept {
  return record(generator, [=](Page& page) { page.clips.add(rectangle); });
}

int32_t QZSVGGEN_CALL SVG_ExcludeClippingRegion(SvgGenerator* generator,
                                                const RECT* rectangle) noexcept {
  return record(generator, [=](Page& page) { page.clips.exclude(*rectangle); });
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
  return record(generator, [=](Page& page) {
    page.openGroup(FormField(fieldType, fieldFlags, exFieldFlags, *bounds, name, nameLength,
                             typeData, typeDataSize));
  });
}

int32_t QZSVGGEN_CALL SVG_EndFormField(SvgGenerator* generator) noexcept {
  return closeGroup(generator);
}

int32_t QZSVGGEN_CALL SVG_BeginLink(SvgGenerator* generator, uint16_t linkType,
                                    const SVG_Char* target, int32_t targetLength) noexcept {
  return record(generator,
                [=](Page& page) { page.openGroup(Link(linkType, target, targetLength)); });
}

int32_t QZSVGGEN_CALL SVG_EndLink(SvgGenerator* generator) noexcept {
  return closeGroup(generator);
}

int32_t QZSVGGEN_CALL SVG_SetDocumentTarget(SvgGenerator* generator, const POINT* position,
                                            const SVG_Char* name, int32_t nameLength) noexcept {
  return record(generator,
                [=](Page& page) { page.addTarget(DocumentTarget(*position, name, nameLength)); });
}

int32_t QZSVGGEN_CALL SVG_BeginSignatureField(SvgGenerator* generator, const RECT* bounds,
                                              const SVG_Char* name, int32_t nameLength,
                                              const SVG_Char* infoData,
                                              int32_t infoDataSize) noexcept {
  return record(generator, [=](Page& page) {
    page.openGroup(SignatureField(*bounds, name, nameLength, infoData, infoDataSize));
  });
}

int32_t QZSVGGEN_CALL SVG_EndSignatureField(SvgGenerator* generator) noexcept {
  return closeGroup(generator);
}
