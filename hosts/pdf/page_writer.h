// Draws a scene with the library's calls.
#pragma once

#include "plan.h"
#include "text_lines.h"

namespace qz::pdf {

enum class TextMode { kOutlines, kBoth };

// The page's document.
std::u16string writePage(const Scene& scene, const Plan& plan, const std::vector<Outline>& outlines,
                         TextMode mode);

}  // namespace qz::pdf
