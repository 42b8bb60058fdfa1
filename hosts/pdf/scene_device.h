// The MuPDF devices of the engine. Part of the engine.
#pragma once

#include "mupdf.h"
#include "scene_builder.h"

namespace qz::pdf {

// Tells the builder what is drawn on a page. Bitmaps of what nothing else says have `resolution`
// pixels per inch. Throws MuPDF's way.
fz_device* newSceneDevice(fz_context* context, SceneBuilder* builder, fz_rect page, int resolution);

// An image, painted in a colour when it is a stencil. Throws MuPDF's way.
void addImage(fz_context* context, SceneBuilder& builder, fz_image* image, fz_matrix matrix,
              const Colour* stencil, float alpha);

// An image that masks what is drawn after it. Throws MuPDF's way.
void addImageMask(fz_context* context, SceneBuilder& builder, fz_image* image, fz_matrix matrix);

// A shade where it is visible, as a bitmap of `resolution` pixels per inch when SVG has no such
// gradient. Throws MuPDF's way.
void addShade(fz_context* context, SceneBuilder& builder, fz_shade* shade, fz_matrix matrix,
              float alpha, fz_color_params params, fz_rect visible, int resolution);

}  // namespace qz::pdf
