// Gradients from samples of their colours.
#pragma once

#include "scene.h"

namespace qz::pdf {

// Whether SVG has such a gradient: a line, or a circle that lies within another.
bool isSayable(const GradientShape& shape);

// The gradient with as few stops as come within a grey value or two of the samples: `count` colours
// at equal distances, three bytes each. The larger circle becomes the second one.
Gradient makeGradient(const GradientShape& shape, const uint8_t* colours, int count);

}  // namespace qz::pdf
