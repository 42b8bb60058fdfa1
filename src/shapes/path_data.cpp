#include "shapes/path_data.h"

#include <algorithm>

namespace qz {
namespace {

// Points are written in steps, so that a place for them is reserved once a step.
constexpr uint32_t kStep = 64;

// Steps between which the text is hashed are short: hashing is a chain of multiplications that wait
// for each other, and the processor formats the next points meanwhile.
constexpr uint32_t kHashedStep = 4;

// What the points so far decide about the text of the next one.
class PathDataWriter {
 public:
  static constexpr size_t kMaxPointSize = kMaxCoordinatePairSize + 2;  // a letter or space, "z"

  char* writePoint(char* out, const POINT& point, uint8_t type) {
    if (type == PT_MOVETO) {
      // Relative to the last move, not to the last point. The first one is the absolute head.
      if (moved_) {
        *out++ = 'm';
        out = formatCoordinatePair(out, wrappingSubtract(point.x, start_.x),
                                   wrappingSubtract(point.y, start_.y));
      }
      moved_ = true;
      lineRun_ = curveRun_ = false;
      start_ = reference_ = point;
      return out;
    }
    switch (type) {
      case PT_CLOSEFIGURE:
        *out++ = 'z';
        break;
      case PT_LINETO:
      case PT_LINETO | PT_CLOSEFIGURE:
        out = writeOffset(out, point, 'l', lineRun_);
        curveRun_ = false;
        break;
      case PT_BEZIERTO:
      case PT_BEZIERTO | PT_CLOSEFIGURE:
        if (!curveRun_) curvePoints_ = 0;
        out = writeOffset(out, point, 'c', curveRun_);
        lineRun_ = false;
        break;
      default:
        break;  // writes nothing, but moves the reference on
    }
    // A "z" ends no run: what follows is measured from the closing point.
    if (type == (PT_LINETO | PT_CLOSEFIGURE) || type == (PT_BEZIERTO | PT_CLOSEFIGURE))
      *out++ = 'z';
    moveReference(point);
    return out;
  }

 private:
  // The letter only where a run begins; within it a space, unless a minus sign separates the
  // numbers.
  char* writeOffset(char* out, const POINT& point, char letter, bool& run) {
    const int32_t x = wrappingSubtract(point.x, reference_.x);
    *out = run ? ' ' : letter;
    out += !run || x >= 0;
    run = true;
    return formatCoordinatePair(out, x, wrappingSubtract(point.y, reference_.y));
  }

  // The three points of a curve are all measured from where it begins.
  void moveReference(const POINT& point) {
    if (curveRun_) {
      curvePoints_ = curvePoints_ == 2 ? 0 : curvePoints_ + 1;
      if (curvePoints_ != 0) return;
    }
    reference_ = point;
  }

  POINT reference_{0, 0};
  POINT start_{0, 0};
  bool moved_ = false;
  bool lineRun_ = false;
  bool curveRun_ = false;
  int curvePoints_ = 0;  // modulo 3
};

// Calls observe(std::string_view) with the text of each step.
template <uint32_t step, class Observe>
void writeSteps(MarkupText& out, const TypedPoints& path, Observe observe) {
  // Copies: the compiler must assume that the text which is written overlaps `path`.
  const POINT* const points = path.points;
  const uint8_t* const types = path.types;
  const uint32_t count = path.count;
  const auto writeStep = [&](size_t maxSize, auto write) {
    char* const begin = out.reserve(maxSize);
    char* const end = write(begin);
    out.commit(end);
    observe(std::string_view(begin, static_cast<size_t>(end - begin)));
  };
  // The first move is the head of the text, even when it comes late.
  const uint8_t* const firstMove = std::find(types, types + count, uint8_t{PT_MOVETO});
  if (firstMove != types + count)
    writeStep(kMaxCoordinatePairSize + 1, [&](char* text) {
      return putAll(text, "M", CoordinatePair(points[firstMove - types]));
    });

  PathDataWriter writer;
  uint32_t i = 0;
  while (i < count) {
    const uint32_t end = i + std::min(step, count - i);
    writeStep((end - i) * PathDataWriter::kMaxPointSize, [&](char* text) {
      for (; i < end; ++i) text = writer.writePoint(text, points[i], types[i]);
      return text;
    });
  }
}

}  // namespace

void writePathData(MarkupText& out, const TypedPoints& path) {
  writeSteps<kStep>(out, path, [](std::string_view) {});
}

ContentHash writeHashedPathData(MarkupText& out, const TypedPoints& path) {
  ContentHash hash;
  writeSteps<kHashedStep>(out, path, [&](std::string_view text) { hash.add(text); });
  return hash;
}

void writePointList(MarkupText& out, const POINT* points, uint32_t count, const POINT& origin) {
  for (uint32_t i = 0; i < count;) {
    const uint32_t end = i + std::min(kStep, count - i);
    char* text = out.reserve((end - i) * (kMaxCoordinatePairSize + 1));
    for (; i < end; ++i) {
      *text = ' ';
      text = formatCoordinatePair(text + (i != 0), wrappingSubtract(points[i].x, origin.x),
                                  wrappingSubtract(points[i].y, origin.y));
    }
    out.commit(text);
  }
}

}  // namespace qz
