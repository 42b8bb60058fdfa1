// The MuPDF devices of the engine. Part of the engine.
#pragma once

#include "mupdf.h"
#include "scene_builder.h"

namespace qz::pdf {

// Tells the builder what is drawn. Throws MuPDF's way.
fz_device* newSceneDevice(fz_context* context, SceneBuilder* builder);

// An image, painted in a colour when it is a stencil. Throws MuPDF's way.
void addImage(fz_context* context, SceneBuilder& builder, fz_image* image, fz_matrix matrix,
              const Colour* stencil, float alpha);

// One picture that is drawn from parts of a page.
struct RenderTarget {
  const std::vector<Calls>* calls;
  fz_device* device;  // not owned
  fz_matrix matrix;   // from units to its pixels
  size_t next = 0;    // the range that is drawn or waited for
  bool onPage = false;
};

// Draws those calls onto the targets. Targets `onPage` come first, the others in the order of their
// calls. Throws MuPDF's way.
fz_device* newRenderDevice(fz_context* context, std::vector<RenderTarget>* targets);

}  // namespace qz::pdf
