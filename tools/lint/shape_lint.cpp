#include <algorithm>

#include "recording_lint.h"

namespace qz::tools {
namespace {

constexpr int64_t kFar = 8388608;
constexpr int kNear = 2;  // sizes of the outline

Box boxOf(const POINT* points, std::size_t count) {
  Box box{points[0].x, points[0].y, points[0].x, points[0].y};
  for (std::size_t i = 1; i < count; ++i)
    box = {std::min<int64_t>(box.left, points[i].x), std::min<int64_t>(box.top, points[i].y),
           std::max<int64_t>(box.right, points[i].x), std::max<int64_t>(box.bottom, points[i].y)};
  return box;
}

Box ordered(const RECT& value) {
  return {std::min(value.left, value.right), std::min(value.top, value.bottom),
          std::max(value.left, value.right), std::max(value.top, value.bottom)};
}

bool wraps(int64_t difference) { return difference > INT32_MAX || difference < INT32_MIN; }

bool isMove(uint8_t type) { return type == PT_MOVETO; }
bool isCurve(uint8_t type) { return type == PT_BEZIERTO || type == (PT_BEZIERTO | PT_CLOSEFIGURE); }
bool closes(uint8_t type) {
  return type == (PT_LINETO | PT_CLOSEFIGURE) || type == (PT_BEZIERTO | PT_CLOSEFIGURE);
}
bool areEqual(const POINT& a, const POINT& b) { return a.x == b.x && a.y == b.y; }

}  // namespace

// Of a shape inside a block: the paint is the block's. Returns whether there is an open block.
bool RecordingLint::checkOutline(bool readersMoveIt) {
  const PageState::Block* block = state_.block();
  if (block == nullptr) return false;
  if (block->characters.empty()) {
    report(rule("block-no-character"));
  } else if (!readersMoveIt) {
    const POINT& position = block->characters.back().position;
    if (position.x != 0 || position.y != 0) report(rule("block-outline"));
  }
  return true;
}

void RecordingLint::checkPlace(const Box& box) {
  if (!wrapped_ && std::max({-box.left, -box.top, box.right, box.bottom}) > kFar)
    report(rule("far"));
  const RECT& page = state_.page();
  const int64_t width = int64_t{page.right} - page.left, height = int64_t{page.bottom} - page.top;
  if (box.right < 0 || box.bottom < 0 || box.left > width || box.top > height)
    report(rule("off-page"));
  if (state_.region() == kNone) return;
  const Region& region = state_.regions()[static_cast<std::size_t>(state_.region())];
  Box kept = ordered(region.kept.front());
  for (const RECT& each : region.kept) {
    const Box more = ordered(each);
    kept = {std::min(kept.left, more.left), std::min(kept.top, more.top),
            std::max(kept.right, more.right), std::max(kept.bottom, more.bottom)};
  }
  if (box.right < kept.left || box.bottom < kept.top || box.left > kept.right ||
      box.top > kept.bottom)
    report(rule("clipped-away"));
  const Group* group = state_.group();
  const bool sticksOut = box.left < kept.left || box.top < kept.top || box.right > kept.right ||
                         box.bottom > kept.bottom;
  if (group != nullptr && group->region != state_.region() && region.line > group->line &&
      sticksOut)
    report(rule("clip-in-group"), "the region of line " + std::to_string(region.line) +
                                      " was begun inside the group of line " +
                                      std::to_string(group->line));
}

void RecordingLint::checkInversion() {
  if (state_.paint().inverted != state_.inverting())
    report(rule("invert-late"), state_.inverting()
                                    ? "invert painting begins, and paint is not set anew"
                                    : "invert painting ends, and paint is not set anew");
}

// `isLine`: there is no area that a fill could show.
void RecordingLint::checkPaint(const Box& box, bool isLine) {
  checkPlace(box);
  checkInversion();
  const Paint& paint = state_.paint();
  if (paint.strokes() || (paint.fills() && !isLine)) return;
  if (paint.stroke.alpha > 0 && paint.width == 0 && !paint.fills())
    report(rule("stroke-width-0"));
  else if (isLine)
    report(rule("line-without-stroke"));
  else
    report(rule("invisible-shape"));
}

void RecordingLint::check(Function<SVG_DrawLine>, const POINT* from, const POINT* to) {
  if (checkOutline(false)) return;
  const POINT points[] = {*from, *to};
  checkPaint(boxOf(points, 2), true);
  if (state_.paint().inverted && (from->x == to->x || from->y == to->y))
    report(rule("invert-flat-line"));
}

void RecordingLint::check(Function<SVG_DrawRectangle>, const RECT* value) {
  const bool isReversed = value->right < value->left;
  if (isReversed) report(rule("reversed-rectangle"));
  wrapped_ = wraps(int64_t{value->bottom} - value->top);
  if (wrapped_) report(rule("wrap"));
  if (checkOutline(true)) return;
  const bool isFlat = value->right == value->left || value->bottom == value->top;
  if (isFlat && !state_.paint().strokes() && state_.paint().fills())
    report(rule("invisible-shape"), "a flat rectangle without a stroke");
  else
    checkPaint(ordered(*value), isFlat);
}

void RecordingLint::check(Function<SVG_DrawRoundedRectangle>, const RECT* value, uint32_t width,
                          uint32_t height, uint16_t mask) {
  if (mask == 0) return check(Function<SVG_DrawRectangle>(), value);
  if ((mask & 15) != 0 && (width > 1 || height > 1)) report(rule("rounded-corners"));
  if ((mask & 15) != 15) report(rule("rounded-mask"), "a corner mask of " + std::to_string(mask));
  if (!checkOutline(true)) checkPaint(ordered(*value), false);
}

void RecordingLint::check(Function<SVG_DrawPolyline>, const POINT* points, uint32_t count) {
  if (count < 2) report(rule("few-points"));
  if (checkOutline(false) || count == 0) return;
  const Box box = boxOf(points, count);
  const bool isFlat = box.left == box.right || box.top == box.bottom;
  checkPaint(box, isFlat);
  if (!isFlat && count > 2 && state_.paint().fills() && !areEqual(points[0], points[count - 1]))
    report(rule("filled-line"));
}

void RecordingLint::check(Function<SVG_DrawPolygon>, const POINT* points, uint32_t count) {
  if (count < 2) report(rule("few-points"));
  if (checkOutline(false) || count == 0) return;
  const Box box = boxOf(points, count);
  checkPaint(box, box.left == box.right || box.top == box.bottom);
}

void RecordingLint::checkPathData(const POINT* points, const uint8_t* types, uint32_t count) {
  if (std::all_of(types, types + count, isMove)) return report(rule("path-empty"));
  if (!isMove(types[0])) report(rule("path-start"));
  bool hasOtherType = false, goesOn = false, curvesAreWhole = true;
  uint32_t curve = 0;
  POINT start = points[0];
  for (uint32_t i = 0; i < count; ++i) {
    const uint8_t type = types[i];
    hasOtherType = hasOtherType || type < PT_LINETO || type > PT_MOVETO;
    if (i > 0) {
      const POINT& from = isMove(type) ? start : points[i - 1];
      wrapped_ =
          wrapped_ || wraps(int64_t{points[i].x} - from.x) || wraps(int64_t{points[i].y} - from.y);
      goesOn = goesOn || (closes(types[i - 1]) && !isMove(type) && !areEqual(points[i - 1], start));
    }
    if (isMove(type)) start = points[i];
    curve = isCurve(type) ? curve + 1 : 0;
    const bool ends = i + 1 == count || !isCurve(types[i + 1]);
    curvesAreWhole = curvesAreWhole && !(isCurve(type) && ends && curve % 3 != 0);
  }
  if (!curvesAreWhole) report(rule("path-curves"));
  if (hasOtherType) report(rule("path-type"));
  if (wrapped_) report(rule("wrap"));
  if (goesOn) report(rule("path-after-close"));
}

void RecordingLint::check(Function<SVG_DrawPath>, const POINT* points, const uint8_t* types,
                          uint32_t count) {
  checkPathData(points, types, count);
  if (count == 0) return;
  const Box box = boxOf(points, count);
  if (!checkOutline(true)) return checkPaint(box, false);
  if (state_.block()->characters.empty()) return;

  // Outlines near (0, 0) of characters that are not: as if they were relative to them.
  const POINT& position = state_.block()->characters.back().position;
  const int64_t size = std::max({box.right - box.left, box.bottom - box.top, int64_t{1}});
  const auto isNear = [&](int64_t x, int64_t y) {
    return x >= box.left - kNear * size && x <= box.right + kNear * size &&
           y >= box.top - kNear * size && y <= box.bottom + kNear * size;
  };
  if (isNear(0, 0) && !isNear(position.x, position.y)) {
    if (outlines_.relative++ == 0) outlines_.firstRelative = state_.line();
  } else {
    ++outlines_.inPlace;
  }

  std::string form(types, types + count), place;
  for (uint32_t i = 1; i < count; ++i)
    form += ' ' + std::to_string(int64_t{points[i].x} - points[0].x) + ' ' +
            std::to_string(int64_t{points[i].y} - points[0].y);
  place = std::to_string(points[0].x) + ' ' + std::to_string(points[0].y);
  std::set<std::string>& places = shapes_[form];
  if (places.insert(place).second && places.size() > 1 && repeatedOutlines_++ == 0)
    firstRepeatedOutline_ = state_.line();
}

void RecordingLint::check(Function<SVG_InvertPath>, const POINT* points, const uint8_t* types,
                          uint32_t count) {
  checkPathData(points, types, count);
  if (isFirst("invert-path")) report(rule("invert-path"));
}

void RecordingLint::check(Function<SVG_InvertRectangle>, const RECT* value) {
  if (value->right <= value->left || value->bottom <= value->top) report(rule("invert-rectangle"));
}

}  // namespace qz::tools
