// Draws a scene with the library's calls.
#pragma once

#include "plan.h"
#include "text_lines.h"

namespace qz::pdf {

enum class TextMode { kFonts, kBoth, kOutlines };

// The page's document. Outlines and shapes are those of the engine.
std::u16string writePage(const Scene& scene, const Plan& plan, const std::vector<Outline>& outlines,
                         const std::vector<Shape>& shapes, TextMode mode);

}  // namespace qz::pdf
