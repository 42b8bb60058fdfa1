// Images as files that a page can hold. MuPDF's calls may jump out of these functions: they own
// nothing.
#include "png.h"
#include "scene_device.h"

namespace qz::pdf {
namespace {

using Use = PictureKey::Use;

constexpr double maxSamples = 200e6;  // of an image that is read row by row
constexpr float maxPixels = 25e6f;  // of one that is read as a whole; of a larger one every second

struct Shown {
  fz_image* image;
  Use use;
  Colour stencil;
};

bool isGrey(fz_context* context, const fz_image* image) {
  return image->colorspace == nullptr || fz_colorspace_is_gray(context, image->colorspace) != 0;
}

// A JPEG whose own bytes show what is to be shown, or null.
fz_buffer* ownJpeg(fz_context* context, fz_image* image, const fz_compressed_buffer* file) {
  if (file == nullptr || file->params.type != FZ_IMAGE_JPEG) return nullptr;
  const bool plain = file->params.u.jpeg.color_transform != 0 && image->use_colorkey == 0 &&
                     image->use_decode == 0 && image->imagemask == 0;
  const bool browsersColours =
      isGrey(context, image) || fz_colorspace_is_rgb(context, image->colorspace) != 0;
  return plain && browsersColours ? file->buffer : nullptr;
}

// Whether rows of samples can be read one by one.
bool hasSamples(const fz_compressed_buffer* file) {
  if (file == nullptr) return false;
  switch (file->params.type) {
    case FZ_IMAGE_RAW:
    case FZ_IMAGE_FAX:
    case FZ_IMAGE_FLATE:
    case FZ_IMAGE_JBIG2:
    case FZ_IMAGE_LZW:
    case FZ_IMAGE_RLD:
      return true;
    default:
      return false;
  }
}

// What a sample of an image of one component looks like.
Colour colourOf(fz_context* context, const Shown& shown, int sample) {
  const fz_image& image = *shown.image;
  const float share = static_cast<float>(sample) / static_cast<float>((1 << image.bpc) - 1);
  const float value = image.decode[0] + share * (image.decode[1] - image.decode[0]);
  if (shown.use == Use::kStencil || image.imagemask != 0) {  // 0 is painted, 1 is not
    Colour colour = shown.stencil;
    colour.alpha = toByte((1 - value) * static_cast<float>(colour.alpha) / 255);
    return colour;
  }
  if (image.colorspace == nullptr) return {255, toByte(value), toByte(value), toByte(value)};
  const bool indexed = fz_colorspace_is_indexed(context, image.colorspace) != 0;
  const float input = indexed ? (std::round(value) + 0.25f) / 255 : value;
  float rgb[3] = {};
  fz_convert_color(context, image.colorspace, &input, fz_device_rgb(context), rgb, nullptr,
                   fz_default_color_params);
  const bool keyed =
      image.use_colorkey != 0 && sample >= image.colorkey[0] && sample <= image.colorkey[1];
  return {static_cast<uint8_t>(keyed ? 0 : 255), toByte(rgb[0]), toByte(rgb[1]), toByte(rgb[2])};
}

// A PNG of the image's own samples, to be dropped by the caller.
fz_buffer* fromSamples(fz_context* context, const PngForm& form, fz_compressed_buffer* file) {
  const auto& flate = file->params.u.flate;
  const int components = form.colours == PngColours::kRgb ? 3 : 1;
  if (file->params.type == FZ_IMAGE_FLATE && flate.predictor >= 10 && flate.columns == form.width &&
      flate.colors == components && flate.bpc == form.bits)
    return newPngOfData(context, form, file->buffer);
  fz_stream* const rows = fz_open_image_decomp_stream_from_buffer(context, file, nullptr);
  fz_buffer* png = nullptr;
  fz_var(png);
  fz_try(context) png = newPng(context, form, rows);
  fz_always(context) fz_drop_stream(context, rows);
  fz_catch(context) fz_rethrow(context);
  return png;
}

// A PNG of samples whose colours are known without the engine, or null.
fz_buffer* fromPlainSamples(fz_context* context, const Shown& shown, fz_compressed_buffer* file) {
  const fz_image& image = *shown.image;
  const bool matted = image.mask != nullptr && image.use_colorkey != 0;
  const double samples = double{1} * image.w * image.h * image.n;
  if (!hasSamples(file) || matted || samples > maxSamples) return nullptr;
  Colour palette[256];
  PngForm form = {image.w, image.h, image.bpc, PngColours::kPalette, palette};
  if (image.n == 1 && (image.bpc == 1 || image.bpc == 2 || image.bpc == 4 || image.bpc == 8)) {
    bool grey = true;
    const int count = 1 << image.bpc;
    for (int i = 0; i < count; ++i) {
      palette[i] = colourOf(context, shown, i);
      const uint8_t level = static_cast<uint8_t>(i * 255 / (count - 1));
      grey = grey && palette[i] == Colour{255, level, level, level};
    }
    if (grey) form.colours = PngColours::kGrey;
    return fromSamples(context, form, file);
  }
  form.colours = PngColours::kRgb;
  const bool plain = image.n == 3 && image.bpc == 8 && image.use_colorkey == 0 &&
                     image.use_decode == 0 && image.colorspace == fz_device_rgb(context);
  return plain ? fromSamples(context, form, file) : nullptr;
}

// The image as the engine reads it, in grey or RGB, to be dropped by the caller.
fz_pixmap* newPixels(fz_context* context, fz_image* image) {
  const float w = static_cast<float>(image->w), h = static_cast<float>(image->h);
  fz_matrix size = fz_scale(w, h);
  if (w * h > maxPixels) size = fz_post_scale(size, 0.5f, 0.5f);
  int width = 0, height = 0;
  fz_pixmap* const own = fz_get_pixmap_from_image(context, image, nullptr, &size, &width, &height);
  const bool ready =
      own->colorspace == nullptr || own->n == 1 || own->colorspace == fz_device_rgb(context);
  if (ready) return own;
  fz_pixmap* pixels = nullptr;
  fz_var(pixels);
  fz_try(context) pixels = fz_convert_pixmap(context, own, fz_device_rgb(context), nullptr, nullptr,
                                             fz_default_color_params, 1);
  fz_always(context) fz_drop_pixmap(context, own);
  fz_catch(context) fz_rethrow(context);
  return pixels;
}

// A PNG of what the engine reads, to be dropped by the caller.
fz_buffer* fromPixels(fz_context* context, const Shown& shown) {
  Colour palette[256];
  for (int i = 0; i < 256; ++i) {
    const uint8_t level = static_cast<uint8_t>(i);
    palette[i] = shown.use == Use::kStencil ? shown.stencil : Colour{255, level, level, level};
    if (shown.use == Use::kStencil)
      palette[i].alpha = toByte(static_cast<float>(shown.stencil.alpha * i) / (255 * 255));
  }
  fz_pixmap* const pixels = newPixels(context, shown.image);
  fz_stream* rows = nullptr;
  fz_buffer* png = nullptr;
  fz_var(rows);
  fz_var(png);
  fz_try(context) {
    rows = fz_open_memory(context, pixels->samples,
                          static_cast<size_t>(pixels->stride) * static_cast<size_t>(pixels->h));
    const PngColours colours = pixels->n == 1   ? PngColours::kPalette
                               : pixels->n == 3 ? PngColours::kRgb
                                                : PngColours::kRgba;
    png = newPng(context, {pixels->w, pixels->h, 8, colours, palette}, rows);
  }
  fz_always(context) {
    fz_drop_stream(context, rows);
    fz_drop_pixmap(context, pixels);
  }
  fz_catch(context) fz_rethrow(context);
  return png;
}

void storeImage(fz_context* context, SceneBuilder& builder, const PictureKey& key,
                const Shown& shown) {
  fz_compressed_buffer* const file = fz_compressed_image_buffer(context, shown.image);
  unsigned char* bytes = nullptr;
  if (fz_buffer* const jpeg = ownJpeg(context, shown.image, file)) {
    const size_t size = fz_buffer_storage(context, jpeg, &bytes);
    return builder.storePicture(key, qzsvggen::ImageFormat::kJpeg, bytes, size);
  }
  fz_buffer* png = fromPlainSamples(context, shown, file);
  if (png == nullptr) png = fromPixels(context, shown);
  const size_t size = fz_buffer_storage(context, png, &bytes);
  builder.storePicture(key, qzsvggen::ImageFormat::kPng, bytes, size);
  fz_drop_buffer(context, png);
}

void place(fz_context* context, SceneBuilder& builder, const Shown& shown, fz_matrix m,
           float alpha) {
  const Box bounds = toBox(fz_transform_rect(fz_unit_rect, m));
  if (!(bounds.width() >= 0.01f && bounds.height() >= 0.01f && bounds.width() < 1e7f &&
        bounds.height() < 1e7f))
    return;
  const Colour c = shown.stencil;
  const PictureKey key = {
      shown.image, shown.use,
      static_cast<uint32_t>(c.alpha << 24 | c.red << 16 | c.green << 8 | c.blue)};
  if (!builder.knowsPicture(key)) storeImage(context, builder, key, shown);
  builder.addPicture(key, toMatrix(m),
                     {static_cast<float>(shown.image->w), static_cast<float>(shown.image->h)},
                     shown.image->interpolate != 0, alpha);
}

}  // namespace

void addImage(fz_context* context, SceneBuilder& builder, fz_image* image, fz_matrix m,
              const Colour* stencil, float alpha) {
  const Use use = stencil != nullptr ? Use::kStencil : Use::kShown;
  place(context, builder, {image, use, stencil != nullptr ? *stencil : Colour{}}, m, alpha);
}

// White where it lets everything through: a mask counts lightness.
void addImageMask(fz_context* context, SceneBuilder& builder, fz_image* image, fz_matrix m) {
  place(context, builder, {image, Use::kMask, {255, 255, 255, 255}}, m, 1);
}

}  // namespace qz::pdf
