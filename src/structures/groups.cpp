#include "structures/groups.h"

#include <cstring>

namespace qz {
namespace {

// An attribute with host text; nothing when the text is empty.
template <size_t size>
void writeOptional(MarkupText& out, const char (&start)[size], Utf16View text) {
  if (text.empty()) return;
  out.append(start);
  out.appendText(text);
  out.append("\"");
}

void writeBounds(MarkupText& out, const RECT& bounds) {
  out.append(" velumark:bounds=\"", bounds.left, " ", bounds.top, " ", bounds.right, " ",
             bounds.bottom, "\"");
}

std::string_view typeAttribute(uint16_t fieldType) {
  switch (fieldType) {
    case SVG_FIELD_CHECKBOX:
      return " velumark:formFieldType=\"FT_CHECKBOX\"";
    case SVG_FIELD_COMBOBOX:
      return " velumark:formFieldType=\"FT_COMBOBOX\"";
    case SVG_FIELD_TEXT:
      return " velumark:formFieldType=\"FT_FORMTEXT\"";
    case SVG_FIELD_DATE:
      return " velumark:formFieldType=\"FT_DATE\"";
    default:
      return {};
  }
}

// A date's number comes first, the low byte first.
constexpr int32_t kDateSize = 8;

std::optional<uint64_t> readDate(uint16_t fieldType, const void* typeData) {
  if (fieldType != SVG_FIELD_DATE) return std::nullopt;
  const auto* const bytes = static_cast<const uint8_t*>(typeData);
  uint64_t date = 0;
  for (int i = kDateSize - 1; i >= 0; --i) date = date << 8 | bytes[i];
  return date;
}

// The units behind the date's number, copied to where units may stand.
Utf16String readUnits(uint16_t fieldType, const void* typeData, int32_t size) {
  const auto* bytes = static_cast<const uint8_t*>(typeData);
  int64_t unitsSize = size;
  if (fieldType == SVG_FIELD_DATE) {
    bytes += kDateSize;
    unitsSize -= kDateSize;
  }
  if (unitsSize < 2) return {};
  Utf16String units(static_cast<size_t>(unitsSize / 2), CodeUnit());
  std::memcpy(units.data(), bytes, 2 * units.size());
  return units;
}

}  // namespace

FormField::FormField(uint16_t fieldType, uint8_t fieldFlags, uint8_t exFieldFlags,
                     const RECT& bounds, const CodeUnit* name, int32_t nameLength,
                     const void* typeData, int32_t typeDataSize)
    : Group("</g>"),
      fieldType_(fieldType),
      fieldFlags_(fieldFlags),
      exFieldFlags_(exFieldFlags),
      bounds_(bounds),
      name_(name, nameLength),
      date_(readDate(fieldType, typeData)),
      typeDataUnits_(readUnits(fieldType, typeData, typeDataSize)),
      typeData_(typeDataUnits_.data(), static_cast<int64_t>(typeDataUnits_.size())) {}

void FormField::writeStartTag(MarkupText& out) const {
  out.append("<g velumark:purpose=\"FormField\"", typeAttribute(fieldType_));
  if (fieldFlags_ != 0) out.append(" velumark:fieldFlags=\"", fieldFlags_, "\"");
  if (exFieldFlags_ != 0) out.append(" velumark:exFieldFlags=\"", exFieldFlags_, "\"");
  writeBounds(out, bounds_);
  writeOptional(out, " velumark:name=\"", name_.view());
  if (date_) {
    out.append(" velumark:typeData=\"", *date_, " ");  // the space also without text after it
    out.appendText(typeData_.view());
    out.append("\"");
  } else {
    writeOptional(out, " velumark:typeData=\"", typeData_.view());
  }
  out.append(">");
}

Link::Link(uint16_t linkType, const CodeUnit* target, int32_t targetLength)
    : Group("</a>"), linkType_(linkType), target_(target, targetLength) {}

void Link::writeStartTag(MarkupText& out) const {
  out.append("<a velumark:purpose=\"HypertextLink\"");
  if (linkType_ == SVG_LINK_EXTERNAL) out.append(" velumark:linkType=\"FT_EXTERNALLINK\"");
  if (linkType_ == SVG_LINK_INTERNAL) out.append(" velumark:linkType=\"FT_INTERNALLINK\"");
  out.append(" velumark:targetName=\"");
  out.appendText(target_.view());
  out.append("\" xlink:href=\"");
  if (linkType_ == SVG_LINK_INTERNAL) out.append("#");
  if (linkType_ == SVG_LINK_EXTERNAL || linkType_ == SVG_LINK_INTERNAL)
    out.appendText(target_.view());
  out.append("\">");
}

SignatureField::SignatureField(const RECT& bounds, const CodeUnit* name, int32_t nameLength,
                               const CodeUnit* infoData, int32_t infoDataSize)
    : Group("</g>"),
      bounds_(bounds),
      name_(name, nameLength),
      infoData_(infoData, infoDataSize / 2) {}

// Unlike those of a form field, the bounds come last.
void SignatureField::writeStartTag(MarkupText& out) const {
  out.append("<g velumark:purpose=\"SignatureField\"");
  writeOptional(out, " velumark:name=\"", name_.view());
  writeOptional(out, " velumark:infoData=\"", infoData_.view());
  writeBounds(out, bounds_);
  out.append(">");
}

// The name stands there even when it is empty.
void DocumentTarget::write(MarkupText& out) const {
  out.append("<velumark:target purpose=\"DocumentTarget\" name=\"");
  out.appendText(name_.view());
  out.append("\" position=\"", position_.x, " ", position_.y, "\"/>");
}

}  // namespace qz
