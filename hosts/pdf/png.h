// PNG files from samples as PDF has them. Part of the engine.
#pragma once

#include "mupdf.h"

namespace qz::pdf {

enum class PngColours : uint8_t { kGrey = 0, kRgb = 2, kPalette = 3, kRgba = 6 };

struct PngForm {
  int width, height;
  int bits;  // of a sample
  PngColours colours;
  const Colour* palette;  // of 2 to the power of `bits` colours, for kPalette
};

// A file of rows that each begin at a byte. Missing ones are 0. To be dropped by the caller. Throws
// MuPDF's way.
fz_buffer* newPng(fz_context* context, const PngForm& form, fz_stream* rows);

// A file of data that are compressed as PNG's are.
fz_buffer* newPngOfData(fz_context* context, const PngForm& form, fz_buffer* data);

}  // namespace qz::pdf
