#include "structures/groups.h"

namespace qz {
namespace {

// An attribute with host text; nothing when the text is empty.
template <size_t size>
void writeOptional(MarkupText& out, const char (&start)[size], UnitView text) {
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

}  // namespace

void FormField::writeStartTag(MarkupText& out) const {
  out.append("<g velumark:purpose=\"FormField\"", typeAttribute(fieldType));
  if (fieldFlags != 0) out.append(" velumark:fieldFlags=\"", fieldFlags, "\"");
  if (exFieldFlags != 0) out.append(" velumark:exFieldFlags=\"", exFieldFlags, "\"");
  writeBounds(out, bounds);
  writeOptional(out, " velumark:name=\"", name);
  if (date != nullptr) {
    out.append(" velumark:typeData=\"", *date, " ");  // the blank also without text behind it
    out.appendText(typeData);
    out.append("\"");
  } else {
    writeOptional(out, " velumark:typeData=\"", typeData);
  }
  out.append(">");
}

void Link::writeStartTag(MarkupText& out) const {
  out.append("<a velumark:purpose=\"HypertextLink\"");
  if (linkType == SVG_LINK_EXTERNAL) out.append(" velumark:linkType=\"FT_EXTERNALLINK\"");
  if (linkType == SVG_LINK_INTERNAL) out.append(" velumark:linkType=\"FT_INTERNALLINK\"");
  out.append(" velumark:targetName=\"");
  out.appendText(target);
  out.append("\" xlink:href=\"");
  if (linkType == SVG_LINK_INTERNAL) out.append("#");
  if (linkType == SVG_LINK_EXTERNAL || linkType == SVG_LINK_INTERNAL) out.appendText(target);
  out.append("\">");
}

// Unlike those of a form field, the bounds come last.
void SignatureField::writeStartTag(MarkupText& out) const {
  out.append("<g velumark:purpose=\"SignatureField\"");
  writeOptional(out, " velumark:name=\"", name);
  writeOptional(out, " velumark:infoData=\"", infoData);
  writeBounds(out, bounds);
  out.append(">");
}

// The name stands there even when it is empty.
void DocumentTarget::write(MarkupText& out) const {
  out.append("<velumark:target purpose=\"DocumentTarget\" name=\"");
  out.appendText(name);
  out.append("\" position=\"", position.x, " ", position.y, "\"/>");
}

}  // namespace qz
