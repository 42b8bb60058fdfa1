#include "paint/paint.h"

#include <cassert>

#include "markup/fraction.h"

namespace qz {
namespace {

char* putColour(char* out, const Colour& colour) {
  return putAll(out, "rgb(", colour.red, ",", colour.green, ",", colour.blue, ")\"");
}

char* putFill(char* out, const Colour& fill) {
  if (fill.alpha == 0) return putAll(out, " fill=\"none\"");
  if (fill.red != 0 || fill.green != 0 || fill.blue != 0)
    out = putColour(putAll(out, " fill=\""), fill);
  if (fill.alpha < 255)
    out = putAll(out, " fill-opacity=\"", Fraction(static_cast<float>(fill.alpha) / 255.0f), "\"");
  return out;
}

char* putStroke(char* out, const Colour& stroke, uint32_t width) {
  if (stroke.alpha == 0 || width == 0) return out;
  out = putColour(putAll(out, " stroke=\""), stroke);
  if (stroke.alpha < 255)
    out = putAll(out, " stroke-opacity=\"", Fraction(stroke.alpha / 255.0), "\"");
  return putAll(out, " stroke-width=\"", width, "\"");
}

}  // namespace

PaintAttributes writePaintAttributes(const PaintRecord& record) {
  PaintAttributes attributes;
  char* const begin = attributes.text_.data();
  char* out = putFill(begin, record.fill);
  out = putStroke(out, record.stroke, record.strokeWidth);
  if (record.inverted) out = putAll(out, " filter=\"url(#QZ_V)\"");
  attributes.length_ = static_cast<size_t>(out - begin);
  assert(attributes.length_ <= PaintAttributes::kLongest);
  return attributes;
}

void PaintState::setFill(Colour fill, bool inverted) {
  PaintRecord record = current_;
  record.fill = fill;
  makePaintRecord(record, inverted);
}

void PaintState::setStroke(Colour stroke, uint32_t width, bool inverted) {
  PaintRecord record = current_;
  record.stroke = stroke;
  record.strokeWidth = width;
  makePaintRecord(record, inverted);
}

void PaintState::makePaintRecord(const PaintRecord& record, bool inverted) {
  current_ = record;
  current_.inverted = inverted;
  attributes_ = writePaintAttributes(current_);
}

}  // namespace qz
