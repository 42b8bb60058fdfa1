// The device that tells the scene builder what is drawn. In these functions MuPDF's calls may jump
// out: they own nothing.
#include "scene_device.h"

namespace qz::pdf {
namespace {

struct SceneDevice {
  fz_device base;
  SceneBuilder* builder;
  fz_rect page;
  int resolution;
};

SceneBuilder& builderOf(fz_device* device) {
  return *reinterpret_cast<SceneDevice*>(device)->builder;
}

SceneBuilder& walked(void* builder) { return *static_cast<SceneBuilder*>(builder); }

const fz_path_walker walker = {
    [](fz_context*, void* b, float x, float y) { walked(b).moveTo(x, y); },
    [](fz_context*, void* b, float x, float y) { walked(b).lineTo(x, y); },
    [](fz_context*, void* b, float x1, float y1, float x2, float y2, float x3, float y3) {
      walked(b).curveTo(x1, y1, x2, y2, x3, y3);
    },
    [](fz_context*, void* b) { walked(b).closePath(); },
    nullptr,
    nullptr,
    nullptr,
    nullptr};

void walk(fz_context* context, SceneBuilder& builder, const fz_path* path, fz_matrix matrix) {
  builder.beginPath(matrix);
  fz_walk_path(context, path, &walker, &builder);
}

Colour toColour(fz_context* context, const SceneBuilder& builder, fz_colorspace* space,
                const float* value, float alpha, fz_color_params params) {
  if (const Colour* colour = builder.type3Colour()) return *colour;
  float rgb[3] = {0, 0, 0};
  if (space != nullptr)
    fz_convert_color(context, space, value, fz_device_rgb(context), rgb, nullptr, params);
  return {toByte(alpha), toByte(rgb[0]), toByte(rgb[1]), toByte(rgb[2])};
}

// Of more dashes than there is room for the first ones count.
Pen toPen(const fz_stroke_state* stroke, fz_matrix m) {
  constexpr float maxSkew = 0.1f * unitsPerPoint;
  // A circle becomes an ellipse: the sum of its axes, and what they differ by.
  const float sum = std::hypot(m.a + m.d, m.b - m.c), difference = std::hypot(m.a - m.d, m.b + m.c);
  const float larger = (sum + difference) / 2, skew = std::min(sum, difference);
  Pen pen;
  pen.circular = stroke->linewidth * skew <= maxSkew || larger - skew < 0.001f * larger;
  const float scale = pen.circular ? std::sqrt(std::abs(m.a * m.d - m.b * m.c)) : larger;
  if (!pen.circular) pen.ellipse = {m.a / scale, m.b / scale, m.c / scale, m.d / scale, 0, 0};
  pen.width = stroke->linewidth * scale;
  pen.cap = stroke->start_cap == FZ_LINECAP_BUTT    ? Cap::kButt
            : stroke->start_cap == FZ_LINECAP_ROUND ? Cap::kRound
                                                    : Cap::kSquare;
  pen.join = stroke->linejoin == FZ_LINEJOIN_ROUND   ? Join::kRound
             : stroke->linejoin == FZ_LINEJOIN_BEVEL ? Join::kBevel
                                                     : Join::kMitre;
  pen.mitreLimit = stroke->miterlimit;
  const int count = std::min(stroke->dash_len, static_cast<int>(pen.dashes.size()));
  float period = 0;
  for (int i = 0; i < count; ++i)
    period += pen.dashes[static_cast<size_t>(i)] = std::abs(stroke->dash_list[i]) * scale;
  pen.dashCount = period > 0 ? count : 0;
  pen.dashPhase = stroke->dash_phase * scale;
  return pen;
}

// ---- Paths --------------------------------------------------------------------------------------

void fillPath(fz_context* context, fz_device* device, const fz_path* path, int evenOdd, fz_matrix m,
              fz_colorspace* space, const float* value, float alpha, fz_color_params params) {
  SceneBuilder& builder = builderOf(device);
  const Colour colour = toColour(context, builder, space, value, alpha, params);
  walk(context, builder, path, m);
  builder.addFill(evenOdd != 0, colour);
}

void strokePath(fz_context* context, fz_device* device, const fz_path* path,
                const fz_stroke_state* stroke, fz_matrix m, fz_colorspace* space,
                const float* value, float alpha, fz_color_params params) {
  SceneBuilder& builder = builderOf(device);
  const Colour colour = toColour(context, builder, space, value, alpha, params);
  walk(context, builder, path, m);
  builder.addStroke(toPen(stroke, m), colour);
}

void clipPath(fz_context* context, fz_device* device, const fz_path* path, int evenOdd, fz_matrix m,
              fz_rect) {
  SceneBuilder& builder = builderOf(device);
  walk(context, builder, path, m);
  builder.openClip(evenOdd != 0);
}

constexpr Colour white = {255, 255, 255, 255};

void clipStrokePath(fz_context* context, fz_device* device, const fz_path* path,
                    const fz_stroke_state* stroke, fz_matrix m, fz_rect) {
  SceneBuilder& builder = builderOf(device);
  builder.openMask(false, {});
  walk(context, builder, path, m);
  builder.addStroke(toPen(stroke, m), white);
  builder.beginMasked();
}

// ---- Texts --------------------------------------------------------------------------------------

void makeGlyph(fz_context* context, SceneBuilder& builder, fz_font* font, int glyph,
               bool vertical) {
  builder.beginGlyph();
  fz_path* outline = nullptr;
  float advance = 0;
  fz_var(outline);
  fz_var(advance);
  fz_try(context) {
    advance = fz_advance_glyph(context, font, glyph, vertical);
    if (fz_font_t3_procs(context, font) == nullptr)
      outline = fz_outline_glyph(context, font, glyph, fz_identity);
    if (outline != nullptr) fz_walk_path(context, outline, &walker, &builder);
  }
  fz_always(context) fz_drop_path(context, outline);
  fz_catch(context) builder.beginGlyph();  // a glyph that cannot be read has no shape
  builder.addGlyph(glyph, advance);
}

void drawType3(fz_context* context, SceneBuilder& builder, fz_device* device,
               const fz_text_span* span, fz_matrix m, Colour colour) {
  for (int i = 0; i < span->len; ++i) {
    const fz_text_item& item = span->items[i];
    if (item.gid < 0 || item.gid > 255) continue;
    fz_matrix trm = span->trm;
    trm.e = item.x, trm.f = item.y;
    builder.beginType3((span->font->t3flags[item.gid] & FZ_DEVFLAG_MASK) != 0, colour);
    fz_try(context) fz_run_t3_glyph(context, span->font, item.gid, fz_concat(trm, m), device);
    fz_always(context) builder.endType3();
    fz_catch(context) fz_rethrow(context);
  }
}

void addSpan(fz_context* context, SceneBuilder& builder, fz_device* device,
             const fz_text_span* span, fz_matrix m, const Pen& pen, Colour colour, bool drawn) {
  const fz_matrix matrix = linearPart(fz_concat(span->trm, m));
  const bool type3 = fz_font_t3_procs(context, span->font) != nullptr;
  builder.beginText(span->font, matrix, span->wmode != 0, drawn && !type3);
  for (int i = 0; i < span->len; ++i) {
    const fz_text_item& item = span->items[i];
    if (item.gid >= 0 && !builder.knowsGlyph(item.gid))
      makeGlyph(context, builder, span->font, item.gid, span->wmode != 0);
    const fz_point at = fz_transform_point_xy(item.x, item.y, m);
    builder.putGlyph(item.gid, {at.x, at.y}, item.ucs);
  }
  builder.addText(pen, colour);
  if (type3 && drawn) drawType3(context, builder, device, span, m, colour);
}

void addText(fz_context* context, fz_device* device, const fz_text* text, fz_matrix m,
             const Pen& pen, Colour colour, bool drawn = true) {
  SceneBuilder& builder = *reinterpret_cast<SceneDevice*>(device)->builder;
  for (const fz_text_span* span = text->head; span != nullptr; span = span->next)
    addSpan(context, builder, device, span, m, pen, colour, drawn);
}

void fillText(fz_context* context, fz_device* device, const fz_text* text, fz_matrix m,
              fz_colorspace* space, const float* value, float alpha, fz_color_params params) {
  const SceneBuilder& builder = builderOf(device);
  addText(context, device, text, m, {}, toColour(context, builder, space, value, alpha, params));
}

void strokeText(fz_context* context, fz_device* device, const fz_text* text,
                const fz_stroke_state* stroke, fz_matrix m, fz_colorspace* space,
                const float* value, float alpha, fz_color_params params) {
  const SceneBuilder& builder = builderOf(device);
  addText(context, device, text, m, toPen(stroke, m),
          toColour(context, builder, space, value, alpha, params));
}

void clipText(fz_context* context, fz_device* device, const fz_text* text, fz_matrix m, fz_rect) {
  SceneBuilder& builder = builderOf(device);
  builder.openMask(false, {});
  addText(context, device, text, m, {}, white);
  builder.beginMasked();
}

void clipStrokeText(fz_context* context, fz_device* device, const fz_text* text,
                    const fz_stroke_state* stroke, fz_matrix m, fz_rect) {
  SceneBuilder& builder = builderOf(device);
  builder.openMask(false, {});
  addText(context, device, text, m, toPen(stroke, m), white);
  builder.beginMasked();
}

void ignoreText(fz_context* context, fz_device* device, const fz_text* text, fz_matrix m) {
  addText(context, device, text, m, {}, {}, false);
}

// ---- Pictures and shades ------------------------------------------------------------------------

void fillShade(fz_context* context, fz_device* device, fz_shade* shade, fz_matrix m, float alpha,
               fz_color_params params) {
  const SceneDevice& self = *reinterpret_cast<SceneDevice*>(device);
  const fz_rect visible =
      self.builder->isInTile()
          ? fz_infinite_rect
          : fz_intersect_rect(self.page, fz_device_current_scissor(context, device));
  addShade(context, *self.builder, shade, m, alpha, params, visible, self.resolution);
}

void fillImage(fz_context* context, fz_device* device, fz_image* image, fz_matrix m, float alpha,
               fz_color_params) {
  addImage(context, builderOf(device), image, m, nullptr, alpha);
}

void fillImageMask(fz_context* context, fz_device* device, fz_image* image, fz_matrix m,
                   fz_colorspace* space, const float* value, float alpha, fz_color_params params) {
  SceneBuilder& builder = builderOf(device);
  const Colour colour = toColour(context, builder, space, value, alpha, params);
  addImage(context, builder, image, m, &colour, 1);
}

void clipImageMask(fz_context* context, fz_device* device, fz_image* image, fz_matrix m, fz_rect) {
  SceneBuilder& builder = builderOf(device);
  builder.openMask(true, {});
  addImageMask(context, builder, image, m);
  builder.beginMasked();
}

// ---- Containers ---------------------------------------------------------------------------------

void close(fz_context*, fz_device* device) { builderOf(device).close(); }

void beginMask(fz_context* context, fz_device* device, fz_rect, int luminosity,
               fz_colorspace* space, const float* backdrop, fz_color_params params) {
  SceneBuilder& builder = builderOf(device);
  Colour colour;
  if (luminosity != 0 && backdrop != nullptr)
    colour = toColour(context, builder, space, backdrop, 1, params);
  builder.openMask(luminosity != 0, colour);
}

// What follows is masked, up to a call of pop_clip, which closes what the mask has opened.
void endMask(fz_context*, fz_device* device) { builderOf(device).beginMasked(); }

// As CSS names them, in MuPDF's order.
constexpr const char* blendModes[FZ_BLEND_MODEMASK + 1] = {
    nullptr,       "multiply",   "screen",     "overlay",    "darken",     "lighten",
    "color-dodge", "color-burn", "hard-light", "soft-light", "difference", "exclusion",
    "hue",         "saturation", "color",      "luminosity"};

void beginGroup(fz_context*, fz_device* device, fz_rect, fz_colorspace*, int, int, int blendMode,
                float alpha) {
  builderOf(device).openGroup(blendModes[blendMode & FZ_BLEND_MODEMASK], alpha);
}

int beginTile(fz_context*, fz_device* device, fz_rect area, fz_rect view, float xStep, float yStep,
              fz_matrix m, int) {
  builderOf(device).openTile({toBox(view), {xStep, yStep}, toMatrix(m)},
                             toBox(fz_transform_rect(area, m)));
  return 0;  // the content is not known from an earlier call
}

}  // namespace

fz_device* newSceneDevice(fz_context* context, SceneBuilder* builder, fz_rect page,
                          int resolution) {
  auto* const device =
      reinterpret_cast<SceneDevice*>(fz_new_device_of_size(context, sizeof(SceneDevice)));
  device->builder = builder;
  device->page = page;
  device->resolution = resolution;
  fz_device& base = device->base;
  base.fill_path = fillPath;
  base.stroke_path = strokePath;
  base.clip_path = clipPath;
  base.clip_stroke_path = clipStrokePath;
  base.fill_text = fillText;
  base.stroke_text = strokeText;
  base.clip_text = clipText;
  base.clip_stroke_text = clipStrokeText;
  base.ignore_text = ignoreText;
  base.fill_shade = fillShade;
  base.fill_image = fillImage;
  base.fill_image_mask = fillImageMask;
  base.clip_image_mask = clipImageMask;
  base.pop_clip = close;
  base.begin_mask = beginMask;
  base.end_mask = endMask;
  base.begin_group = beginGroup;
  base.end_group = close;
  base.begin_tile = beginTile;
  base.end_tile = close;
  return &base;
}

}  // namespace qz::pdf
