// Shades as gradients, or as bitmaps. MuPDF's calls may jump out of these functions: they own
// nothing.
#include "gradient.h"
#include "png.h"
#include "scene_device.h"

namespace qz::pdf {
namespace {

constexpr int colourCount = 256;
constexpr float maxPixels = 25e6f;

fz_pixmap* drawPixels(fz_context* context, fz_irect box, bool transparent, fz_shade* shade,
                      fz_matrix m, float alpha, fz_color_params params) {
  fz_pixmap* pixels = nullptr;
  fz_device* device = nullptr;
  fz_var(pixels);
  fz_var(device);
  fz_try(context) {
    pixels =
        fz_new_pixmap_with_bbox(context, fz_device_rgb(context), box, nullptr, transparent ? 1 : 0);
    fz_clear_pixmap(context, pixels);
    device = fz_new_draw_device(context, fz_identity, pixels);
    fz_fill_shade(context, device, shade, m, alpha, params);
    fz_close_device(context, device);
  }
  fz_always(context) fz_drop_device(context, device);
  fz_catch(context) {
    fz_drop_pixmap(context, pixels);
    fz_rethrow(context);
  }
  return pixels;
}

GradientShape shapeOf(const fz_shade* shade, fz_matrix m) {
  const auto& ends = shade->u.l_or_r;
  GradientShape shape;
  shape.radial = shade->type == FZ_RADIAL;
  shape.matrix = toMatrix(fz_concat(shade->matrix, m));
  shape.from = {ends.coords[0][0], ends.coords[0][1]};
  shape.to = {ends.coords[1][0], ends.coords[1][1]};
  shape.fromRadius = ends.coords[0][2];
  shape.toRadius = ends.coords[1][2];
  shape.goesBefore = ends.extend[0] != 0;
  shape.goesBeyond = ends.extend[1] != 0;
  return shape;
}

// Adds the gradient with the colours of a strip on which the engine has drawn it.
void addGradient(fz_context* context, SceneBuilder& builder, const fz_shade* shade,
                 const GradientShape& shape, Box bounds, float alpha, fz_color_params params) {
  fz_shade strip = *shade;
  strip.type = FZ_LINEAR;
  strip.matrix = fz_identity;
  strip.bbox = fz_infinite_rect;
  strip.use_background = 0;
  strip.u.l_or_r = {{1, 1}, {{0.5f, 0, 0}, {colourCount - 0.5f, 0, 0}}};
  fz_pixmap* const pixels =
      drawPixels(context, {0, 0, colourCount, 1}, false, &strip, fz_identity, 1, params);
  builder.addShade(shape, pixels->samples, colourCount, bounds, alpha);
  fz_drop_pixmap(context, pixels);
}

void addBackground(fz_context* context, SceneBuilder& builder, const fz_shade* shade, Box bounds,
                   float alpha, fz_color_params params) {
  float rgb[3] = {};
  fz_convert_color(context, shade->colorspace, shade->background, fz_device_rgb(context), rgb,
                   nullptr, params);
  builder.beginPath(fz_identity);
  builder.moveTo(bounds.left, bounds.top);
  builder.lineTo(bounds.right, bounds.top);
  builder.lineTo(bounds.right, bounds.bottom);
  builder.lineTo(bounds.left, bounds.bottom);
  builder.closePath();
  builder.addFill(false, {toByte(alpha), toByte(rgb[0]), toByte(rgb[1]), toByte(rgb[2])});
}

void addBitmap(fz_context* context, SceneBuilder& builder, fz_shade* shade, fz_matrix m, Box area,
               float alpha, fz_color_params params, int resolution) {
  if (!(area.width() < 1e7f && area.height() < 1e7f)) return;
  float scale = static_cast<float>(resolution) / 72 / unitsPerPoint;
  scale = std::min(scale, std::sqrt(maxPixels / (area.width() * area.height() + 1)));
  const fz_irect box = {static_cast<int>(std::floor(area.left * scale)),
                        static_cast<int>(std::floor(area.top * scale)),
                        static_cast<int>(std::ceil(area.right * scale)) + 1,
                        static_cast<int>(std::ceil(area.bottom * scale)) + 1};
  fz_pixmap* const pixels =
      drawPixels(context, box, true, shade, fz_concat(m, fz_scale(scale, scale)), alpha, params);
  fz_buffer* png = nullptr;
  fz_var(png);
  fz_try(context) {
    png = fz_new_buffer_from_pixmap_as_png(context, pixels, fz_default_color_params);
    unsigned char* bytes = nullptr;
    const size_t size = fz_buffer_storage(context, png, &bytes);
    const auto units = [&](int n) { return static_cast<float>(n) / scale; };
    builder.addBitmap(
        bytes, size,
        {units(box.x1 - box.x0), 0, 0, units(box.y1 - box.y0), units(box.x0), units(box.y0)});
  }
  fz_always(context) {
    fz_drop_buffer(context, png);
    fz_drop_pixmap(context, pixels);
  }
  fz_catch(context) fz_rethrow(context);
}

}  // namespace

void addShade(fz_context* context, SceneBuilder& builder, fz_shade* shade, fz_matrix m, float alpha,
              fz_color_params params, fz_rect visible, int resolution) {
  const Box bounds = toBox(fz_bound_shade(context, shade, m));
  const Box area = common(bounds, toBox(visible));
  if (!(area.width() > 0 && area.height() > 0)) return;
  const bool gradient = shade->type == FZ_LINEAR || shade->type == FZ_RADIAL;
  const GradientShape shape = gradient ? shapeOf(shade, m) : GradientShape{};
  if (!gradient || !isSayable(shape))
    return addBitmap(context, builder, shade, m, area, alpha, params, resolution);
  if (shade->use_background != 0) addBackground(context, builder, shade, area, alpha, params);
  addGradient(context, builder, shade, shape, area, alpha, params);
}

}  // namespace qz::pdf
