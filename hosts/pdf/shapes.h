// What of a path the library's shape calls show as it is meant.
#pragma once

#include <optional>

#include "scene.h"

namespace qz::pdf {

// The rectangle that a path of one figure is, if it is one with level and upright sides.
std::optional<Box> asRectangle(const Path& path);

// Whether a path certainly covers a box.
bool covers(const Path& path, const Box& box);

// Whether both fill rules certainly agree on a path.
bool fillRulesAgree(const Path& path);

// Whether readers draw the stroke as it is meant: without dashes and caps, with a circular pen, and
// with mitres up to a limit of 4 that are at most a tenth of a point off.
bool strokesDirectly(const Path& path, const Pen& pen);

}  // namespace qz::pdf
