// Images as files that a page can hold. MuPDF's calls may jump out of these functions: they own
// nothing.
#include "scene_device.h"

namespace qz::pdf {
namespace {

constexpr float maxSlack = 2;       // units: so much of its bounds a picture may leave empty
constexpr float maxPixels = 25e6f;  // of one picture

struct Shown {
  fz_image* image;
  fz_matrix matrix;
  fz_image* mask;
  fz_matrix maskMatrix;
  const Colour* stencil;
  float alpha;
  Box bounds;
  bool upright;
};

struct Size {
  int width, height;
};

float slack(Size pixels, const Box& bounds) {
  const float scale = std::min(bounds.width() / static_cast<float>(pixels.width),
                               bounds.height() / static_cast<float>(pixels.height));
  return std::max(bounds.width() - scale * static_cast<float>(pixels.width),
                  bounds.height() - scale * static_cast<float>(pixels.height));
}

// Upright images keep their pixels, others get bounds that are no coarser.
Size pixelSize(const Shown& shown) {
  const Box& box = shown.bounds;
  const fz_image& image = *shown.image;
  const Size own = {std::max(image.w, shown.mask != nullptr ? shown.mask->w : 0),
                    std::max(image.h, shown.mask != nullptr ? shown.mask->h : 0)};
  const fz_matrix& m = shown.matrix;
  const float across = static_cast<float>(own.width), down = static_cast<float>(own.height);
  if (shown.upright && across * down <= maxPixels) return own;
  float scale = std::max(across / std::hypot(m.a, m.b), down / std::hypot(m.c, m.d));
  scale = std::min(scale, std::sqrt(maxPixels / (box.width() * box.height())));
  return {std::max(1, static_cast<int>(std::lround(box.width() * scale))),
          std::max(1, static_cast<int>(std::lround(box.height() * scale)))};
}

// A JPEG whose own bytes show what is to be shown, or null.
fz_buffer* ownBytes(fz_context* context, const Shown& shown) {
  fz_image* const image = shown.image;
  fz_compressed_buffer* const file = fz_compressed_image_buffer(context, image);
  const bool plain = file != nullptr && file->params.type == FZ_IMAGE_JPEG &&
                     file->params.u.jpeg.color_transform != 0 && shown.mask == nullptr &&
                     shown.stencil == nullptr && shown.alpha == 1 && image->use_colorkey == 0 &&
                     image->use_decode == 0 && image->imagemask == 0;
  if (!plain || !shown.upright) return nullptr;
  const bool browsersColours = fz_colorspace_is_gray(context, image->colorspace) != 0 ||
                               fz_colorspace_is_rgb(context, image->colorspace) != 0;
  return browsersColours ? file->buffer : nullptr;
}

struct Canvas {
  Size size;
  bool gray, opaque;
  fz_matrix toPixels;
};

bool isSame(fz_matrix a, fz_matrix b) {
  return std::abs(a.a - b.a) < 0.5f && std::abs(a.b - b.b) < 0.5f && std::abs(a.c - b.c) < 0.5f &&
         std::abs(a.d - b.d) < 0.5f && std::abs(a.e - b.e) < 0.5f && std::abs(a.f - b.f) < 0.5f;
}

void drawOn(fz_context* context, fz_device* device, const Shown& shown, const Canvas& canvas) {
  // Exactly the size of the pixels, where that is meant: otherwise they would be scaled.
  const fz_matrix m = shown.upright ? fz_scale(static_cast<float>(canvas.size.width),
                                               static_cast<float>(canvas.size.height))
                                    : fz_concat(shown.matrix, canvas.toPixels);
  if (shown.mask != nullptr)
    fz_clip_image_mask(
        context, device, shown.mask,
        isSame(shown.maskMatrix, shown.matrix) ? m : fz_concat(shown.maskMatrix, canvas.toPixels),
        fz_infinite_rect);
  if (shown.stencil != nullptr) {
    const float rgb[3] = {static_cast<float>(shown.stencil->red) / 255,
                          static_cast<float>(shown.stencil->green) / 255,
                          static_cast<float>(shown.stencil->blue) / 255};
    fz_fill_image_mask(context, device, shown.image, m, fz_device_rgb(context), rgb,
                       static_cast<float>(shown.stencil->alpha) / 255, fz_default_color_params);
  } else {
    fz_fill_image(context, device, shown.image, m, shown.alpha, fz_default_color_params);
  }
  if (shown.mask != nullptr) fz_pop_clip(context, device);
  fz_close_device(context, device);
}

Canvas canvasFor(fz_context* context, const Shown& shown) {
  const Size size = pixelSize(shown);
  const bool stencil = shown.stencil != nullptr;
  return {size, !stencil && fz_colorspace_is_gray(context, shown.image->colorspace) != 0,
          shown.upright && shown.mask == nullptr && !stencil && shown.alpha == 1,
          fz_post_scale(fz_translate(-shown.bounds.left, -shown.bounds.top),
                        static_cast<float>(size.width) / shown.bounds.width(),
                        static_cast<float>(size.height) / shown.bounds.height())};
}

// The pixels as they are shown, to be dropped by the caller.
fz_pixmap* drawPixels(fz_context* context, const Shown& shown, const Canvas& canvas,
                      fz_colorspace* space) {
  fz_pixmap* pixels = nullptr;
  fz_device* device = nullptr;
  fz_var(pixels);
  fz_var(device);
  fz_try(context) {
    pixels = fz_new_pixmap(context, space, canvas.size.width, canvas.size.height, nullptr,
                           canvas.opaque ? 0 : 1);
    if (canvas.opaque)
      fz_clear_pixmap_with_value(context, pixels, 255);
    else
      fz_clear_pixmap(context, pixels);
    device = fz_new_draw_device(context, fz_identity, pixels);
    drawOn(context, device, shown, canvas);
  }
  fz_always(context) fz_drop_device(context, device);
  fz_catch(context) {
    fz_drop_pixmap(context, pixels);
    fz_rethrow(context);
  }
  return pixels;
}

// The image's own pixels, to be dropped by the caller.
fz_pixmap* ownPixels(fz_context* context, fz_image* image, fz_colorspace* space) {
  fz_pixmap* const own =
      fz_get_pixmap_from_image(context, image, nullptr, nullptr, nullptr, nullptr);
  if (fz_pixmap_colorspace(context, own) == space) return own;
  fz_pixmap* pixels = nullptr;
  fz_var(pixels);
  fz_try(context) pixels =
      fz_convert_pixmap(context, own, space, nullptr, nullptr, fz_default_color_params, 0);
  fz_always(context) fz_drop_pixmap(context, own);
  fz_catch(context) fz_rethrow(context);
  return pixels;
}

// A PNG, to be dropped by the caller.
fz_buffer* redraw(fz_context* context, const Shown& shown, const Canvas& canvas) {
  fz_colorspace* const space = canvas.gray ? fz_device_gray(context) : fz_device_rgb(context);
  const bool asIs = canvas.opaque && shown.image->colorspace != nullptr &&
                    canvas.size.width == shown.image->w && canvas.size.height == shown.image->h;
  fz_pixmap* const pixels =
      asIs ? ownPixels(context, shown.image, space) : drawPixels(context, shown, canvas, space);
  fz_buffer* file = nullptr;
  fz_var(file);
  fz_try(context) file = fz_new_buffer_from_pixmap_as_png(context, pixels, fz_default_color_params);
  fz_always(context) fz_drop_pixmap(context, pixels);
  fz_catch(context) fz_rethrow(context);
  return file;
}

PictureKey keyOf(const Shown& shown) {
  PictureKey key;
  key.image = shown.image;
  key.mask = shown.mask;
  if (const Colour* c = shown.stencil)
    key.colour = static_cast<uint32_t>(c->alpha << 24 | c->red << 16 | c->green << 8 | c->blue);
  key.a = toUnits(shown.matrix.a), key.b = toUnits(shown.matrix.b);
  key.c = toUnits(shown.matrix.c), key.d = toUnits(shown.matrix.d);
  key.alpha = static_cast<uint8_t>(shown.alpha * 255);
  return key;
}

}  // namespace

void addImage(fz_context* context, SceneBuilder& builder, fz_image* image, fz_matrix m,
              const Colour* stencil, float alpha) {
  Shown shown = {image, m, nullptr, {}, stencil, alpha, {}, false};
  shown.mask = builder.pendingMask(shown.maskMatrix);
  shown.bounds = toBox(fz_transform_rect(fz_unit_rect, m));
  shown.upright = std::abs(m.b) < 0.5 && std::abs(m.c) < 0.5 && m.a > 0 && m.d > 0;
  if (!(shown.bounds.width() >= 0.01f && shown.bounds.height() >= 0.01f &&
        shown.bounds.width() < 1e7f && shown.bounds.height() < 1e7f))
    return;
  const PictureKey key = keyOf(shown);
  if (!builder.knowsPicture(key)) {
    unsigned char* bytes = nullptr;
    if (fz_buffer* const own = ownBytes(context, shown)) {
      const size_t size = fz_buffer_storage(context, own, &bytes);
      builder.storePicture(key, qzsvggen::ImageFormat::kJpeg, bytes, size);
    } else {
      fz_buffer* const file = redraw(context, shown, canvasFor(context, shown));
      const size_t size = fz_buffer_storage(context, file, &bytes);
      builder.storePicture(key, qzsvggen::ImageFormat::kPng, bytes, size);
      fz_drop_buffer(context, file);
    }
  }
  builder.addPicture(key, shown.bounds, slack(pixelSize(shown), shown.bounds) > maxSlack);
}

}  // namespace qz::pdf
