// Paths as calls of the library, in the paint that is set.
#pragma once

#include "scene.h"

namespace qz::pdf {

void drawFill(qzsvggen::Page& page, const Path& path);
void drawStroke(qzsvggen::Page& page, const Path& path);

}  // namespace qz::pdf
