#include "text/text_run.h"

#include <algorithm>

#include "base/wrapping.h"

namespace qz {
namespace {

constexpr int32_t kStep = 64;

// Writes the x coordinate of each character and returns where the run ends. Positions are separated
// by a space, but a negative one follows directly, separated by its minus sign. That is the format,
// although browsers do not read such a list.
int32_t writePositions(MarkupText& out, int32_t x, const int32_t* advances, int32_t count) {
  for (int32_t i = 0; i < count;) {
    const int32_t end = i + std::min(kStep, count - i);
    char* text = out.reserve(static_cast<size_t>(end - i) * (kMaxDecimalSize<int32_t> + 1));
    for (; i < end; ++i) {
      *text = ' ';
      text = writeDecimal(text + (i != 0 && x >= 0), x);
      x = wrappingAdd(x, advances[i]);
    }
    out.commit(text);
  }
  return x;
}

}  // namespace

void TextRun::write(MarkupText& out) const {
  const int32_t x = origin.x;
  const int32_t y = origin.y;
  int32_t end = x;
  out.append("<text x=\"");
  if (advances != nullptr)
    end = writePositions(out, x, advances, count);
  else
    out.append(x);
  out.append("\" y=\"", y, "\"");
  if (font != kNoFont) out.append(" class=\"QZ_fnt", font, "\"");
  out.append(paint);
  if (isScaled()) {
    // The space before the equals sign is part of the format.
    out.append(" textLength=\"", wrappingSubtract(end, x),
               "\" lengthAdjust=\"spacingAndGlyphs\" velumark:characterScaling =\"",
               characterScaling, "\"");
  }
  out.append(" xml:space=\"preserve\">");
  out.appendText(text.view());
  out.append("</text>");
}

}  // namespace qz
