#include "text/fonts.h"

#include <algorithm>

#include "base/make_room.h"
#include "markup/content_hash.h"
#include "markup/escaped_text.h"

namespace qz {
namespace {

void writeCss(Utf16String& out, Utf16View escapedFamily, int32_t size, bool italic, bool bold) {
  const auto append = [&out](std::string_view text) { out.append(text.begin(), text.end()); };
  append("font:");
  if (bold) append("bold ");
  if (italic) append("italic ");
  char digits[kMaxDecimalSize<int32_t> + kDecimalOverrun];
  append({digits, static_cast<size_t>(writeDecimal(digits, size) - digits)});
  append("px ");
  out.append(escapedFamily);
  append(";");
}

}  // namespace

void Fonts::set(const CodeUnit* family, int32_t familyLength, int32_t size, bool italic,
                bool bold) {
  css_.clear();
  writeCss(css_, EscapedText(family, familyLength).view(), size, italic, bold);
  ContentHash key;
  key.add(Utf16View(css_));
  if (const auto known = index_.find(key.value())) {
    current_ = static_cast<FontNumber>(*known);
    return;
  }
  index_.makeRoom();
  makeRoom(fonts_);
  cssTexts_.append(css_);
  fonts_.push_back({cssTexts_.size() - css_.size(), css_.size(), false});
  current_ = static_cast<FontNumber>(fonts_.size() - 1);
  index_.insert(key.value(), static_cast<HashIndex::Number>(current_));
}

void Fonts::write(MarkupText& out) const {
  if (std::none_of(fonts_.begin(), fonts_.end(), [](const auto& font) { return font.used; }))
    return;
  out.append("<style>");
  for (size_t number = 0; number < fonts_.size(); ++number) {
    const FontStyleSheet& font = fonts_[number];
    if (!font.used) continue;
    out.append(".QZ_fnt", number, "{");
    out.appendText(Utf16View(cssTexts_).substr(font.firstUnit, font.unitCount));
    out.append("}");
  }
  out.append("</style>");
}

}  // namespace qz
