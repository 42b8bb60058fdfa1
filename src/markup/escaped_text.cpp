#include "markup/escaped_text.h"

namespace qz {
namespace {

// Tells whether a unit may need replacing: the first term is true for " & ' and, needlessly, for #,
// the second for < and >. Compared like this, without a branch, several units are done at once.
bool mayNeedReplacing(Utf16View text) {
  unsigned found = 0;
  for (const unsigned unit : text)
    found |= ((unit & 0xFFFAu) == 0x22u) | ((unit & 0xFFFDu) == 0x3Cu) | (unit == 0);
  return found != 0;
}

void appendReplacement(Utf16String& out, CodeUnit unit) {
  const auto entity = [&out](std::string_view text) { out.append(text.begin(), text.end()); };
  switch (unit) {
    case '"':
      return entity("&quot;");
    case '&':
      return entity("&amp;");
    case '\'':
      return entity("&apos;");
    case '<':
      return entity("&lt;");
    case '>':
      return entity("&gt;");
    case 0:
      return entity("\t");
    default:
      out.push_back(unit);
  }
}

}  // namespace

EscapedText::EscapedText(const CodeUnit* text, int64_t count) {
  if (count <= 0) return;
  view_ = Utf16View(text, static_cast<size_t>(count));
  if (view_.back() == 0) view_.remove_suffix(1);
  if (!mayNeedReplacing(view_)) return;
  replaced_.reserve(view_.size() + 16);
  for (const CodeUnit unit : view_) appendReplacement(replaced_, unit);
  view_ = replaced_;
}

}  // namespace qz
