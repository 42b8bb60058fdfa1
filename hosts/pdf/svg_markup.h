// Bits of SVG: numbers, path data and attributes.
#pragma once

#include <string>
#include <string_view>

#include "scene.h"

namespace qz::pdf {

std::string number(int32_t value);
std::string number(float value);
// As in `matrix(a b c d e f)`.
std::string matrixText(const Matrix& m);

std::string pathData(const Path& path);
std::string pathData(const Outline& outline);
std::string boxPath(const Box& box);

// What is painted how. `what` is fill or stroke.
std::string paintAttributes(const char* what, Colour colour);
std::string strokeAttributes(const Pen& pen, Colour colour);

std::string base64(const std::string& bytes);
// The bytes of a text up to what is no base64.
std::string fromBase64(std::string_view text);

}  // namespace qz::pdf
