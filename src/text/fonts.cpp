#include "text/fonts.h"

#include <algorithm>

namespace qz {
namespace {

void appendAscii(UnitString& out, std::string_view text) { out.append(text.begin(), text.end()); }

}  // namespace

void Fonts::set(UnitView escapedFamily, int32_t size, bool italic, bool bold) {
  const size_t first = cssTexts_.size();
  try {
    char digits[kDecimalRoom<int32_t> + kDecimalOverrun];
    appendAscii(cssTexts_, "font:");
    if (bold) appendAscii(cssTexts_, "bold ");
    if (italic) appendAscii(cssTexts_, "italic ");
    appendAscii(cssTexts_, {digits, static_cast<size_t>(writeDecimal(digits, size) - digits)});
    appendAscii(cssTexts_, "px ");
    cssTexts_.append(escapedFamily);
    appendAscii(cssTexts_, ";");

    ContentHash key;
    key.add(UnitView(cssTexts_).substr(first));
    if (const auto known = index_.find(key.value())) {
      cssTexts_.resize(first);
      current_ = static_cast<FontNumber>(*known);
      return;
    }
    index_.reserveOne();
    fonts_.push_back({first, cssTexts_.size() - first, false});
    current_ = static_cast<FontNumber>(fonts_.size() - 1);
    index_.insert(key.value(), static_cast<KeyIndex::Number>(current_));
  } catch (...) {
    cssTexts_.resize(first);
    throw;
  }
}

void Fonts::write(MarkupText& out) const {
  if (std::none_of(fonts_.begin(), fonts_.end(), [](const auto& font) { return font.used; }))
    return;
  out.append("<style>");
  for (size_t number = 0; number < fonts_.size(); ++number) {
    const FontStyleSheet& font = fonts_[number];
    if (!font.used) continue;
    out.append(".QZ_fnt", number, "{");
    out.appendText(UnitView(cssTexts_).substr(font.firstUnit, font.unitCount));
    out.append("}");
  }
  out.append("</style>");
}

}  // namespace qz
