// The document's structures: annotated groups, and targets. All texts are escaped.
#pragma once

#include <cstdint>
#include <string_view>

#include "markup/markup_text.h"

namespace qz {

// Each kind of group writes its start tag, with its attributes in its own order.

struct FormField {
  static constexpr std::string_view kEndTag = "</g>";
  uint16_t fieldType;
  uint8_t fieldFlags;
  uint8_t exFieldFlags;
  RECT bounds;
  UnitView name;
  const uint64_t* date;  // null but for a date field, whose type data starts with it
  UnitView typeData;

  void writeStartTag(MarkupText& out) const;
};

struct Link {
  static constexpr std::string_view kEndTag = "</a>";
  uint16_t linkType;
  UnitView target;

  void writeStartTag(MarkupText& out) const;
};

struct SignatureField {
  static constexpr std::string_view kEndTag = "</g>";
  RECT bounds;
  UnitView name;
  UnitView infoData;

  void writeStartTag(MarkupText& out) const;
};

// A position that links can lead to.
struct DocumentTarget {
  POINT position;
  UnitView name;

  void write(MarkupText& out) const;
};

}  // namespace qz
