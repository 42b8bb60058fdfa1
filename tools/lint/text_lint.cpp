#include "recording_lint.h"
#include "text_checks.h"

namespace qz::tools {
namespace {

constexpr int kManyRuns = 8;

bool isHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

// Letters of Hebrew, Arabic, Syriac, Thaana and their presentation forms, without their marks.
bool isRightToLeftLetter(char16_t unit) {
  return (unit >= 0x05D0 && unit <= 0x05EA) || (unit >= 0x0620 && unit <= 0x064A) ||
         (unit >= 0x066E && unit <= 0x06D5 && unit != 0x0670) ||
         (unit >= 0x0712 && unit <= 0x072F) || (unit >= 0x074D && unit <= 0x07A5) ||
         (unit >= 0xFB1D && unit <= 0xFDFB) || (unit >= 0xFE70 && unit <= 0xFEFC);
}

}  // namespace

void RecordingLint::checkCharacters(const std::u16string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    const bool isPair = isHigh(unit) && i + 1 < text.size() && isLow(text[i + 1]);
    if (isPair) {
      ++i;
    } else if (isHigh(unit) || isLow(unit)) {
      report(rule("lone-surrogate"), codePointName(unit) + " at " + std::to_string(i));
    } else if (unit != 0 && !isXmlCharacter(unit)) {
      report(rule("xml-character"), codePointName(unit) + " at " + std::to_string(i));
    }
  }
}

void RecordingLint::check(Function<SVG_SetFont>, const SVG_Char* family, uint32_t length, int32_t,
                          int32_t, int32_t) {
  checkCharacters(toUnits(family, length));
}

// A font that no text is drawn with is not written: its faults are told at the first text.
void RecordingLint::checkFont() {
  const Font* font = state_.font();
  if (font == nullptr) {
    report(rule("no-font"));
    return;
  }
  if (!isFirst("font of line " + std::to_string(font->line))) return;
  if (font->size <= 0)
    reportAt(font->line, rule("font-size"), "a font size of " + std::to_string(font->size));
  const std::string fault = fontFamilyFault(toUtf8(font->family));
  if (!fault.empty()) reportAt(font->line, rule("font-family"), "no CSS font family, " + fault);
}

void RecordingLint::checkAdvances(const std::u16string& text, const POINT& origin,
                                  const int32_t* advances) {
  int64_t x = origin.x;
  bool isNegative = false, isFar = false, isForward = false, hasPair = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i > 0 && x < 0 && !isNegative) {
      isNegative = true;
      report(rule("negative-x"),
             "character " + std::to_string(i) + " stands at x = " + std::to_string(x));
    }
    isFar = isFar || x > 8388608 || x < -8388608;
    hasPair = hasPair || (i + 2 < text.size() && isHigh(text[i]) && isLow(text[i + 1]));
    isForward = isForward || (advances[i] > 0 && i + 1 < text.size() &&
                              isRightToLeftLetter(text[i]) && isRightToLeftLetter(text[i + 1]));
    x += advances[i];
  }
  if (isFar) report(rule("far"));
  if (isForward) report(rule("rtl-forward"));
  if (hasPair) report(rule("surrogate-in-run"));
}

void RecordingLint::check(Function<SVG_DrawText>, const SVG_Char* text, int32_t length,
                          const POINT* origin, const int32_t* advances, uint32_t scaling) {
  if (length < 1) return;
  std::u16string units = toUnits(text, length);
  checkCharacters(units);
  checkFont();
  checkInversion();
  if (state_.block() != nullptr) report(rule("block-other"), "text inside a block");
  if (advances != nullptr)
    checkAdvances(units, *origin, advances);
  else if (scaling != 100)
    report(rule("scaling-ignored"));
  const bool hasPair = advances != nullptr && units.find(u"\r\n") != std::u16string::npos;
  if (hasPair)
    report(rule("crlf-in-run"));
  else if (units.find_first_of(u"\r\n") != std::u16string::npos)
    report(rule("line-break"));
  if (!state_.paint().fills() && !state_.paint().strokes()) report(rule("invisible-text"));
  countOneCharacterRuns(units, *origin);

  // Where it lies can only be estimated.
  const int64_t size = state_.font() != nullptr ? state_.font()->size : 16;
  int64_t width = advances != nullptr ? 0 : size * length / 4;
  for (int32_t i = 0; advances != nullptr && i < length; ++i) width += advances[i];
  checkPlace({origin->x, origin->y - size / 2, origin->x + std::max<int64_t>(width, 0), origin->y});
}

void RecordingLint::countOneCharacterRuns(const std::u16string& text, const POINT& origin) {
  const Font* font = state_.font();
  const Paint& paint = state_.paint();
  const std::string state =
      std::to_string(origin.y) + "/" +
      (font != nullptr ? toUtf8(font->family) + std::to_string(font->size) : std::string()) + "/" +
      std::to_string(paint.fill.alpha) + "," + std::to_string(paint.fill.red) + "," +
      std::to_string(paint.fill.green) + "," + std::to_string(paint.fill.blue) + "/" +
      std::to_string(state_.region());
  if (text.size() != 1 || state != run_.state) run_ = {state_.line(), 0, origin, nullptr, state};
  if (text.size() != 1) return;
  if (++run_.length == kManyRuns) reportAt(run_.line, rule("one-character-runs"));
}

}  // namespace qz::tools
