// The device that tells the scene builder what is drawn. In these functions MuPDF's calls may jump
// out: they own nothing.
#include "scene_device.h"

namespace qz::pdf {
namespace {

struct SceneDevice {
  fz_device base;
  SceneBuilder* builder;
};

// The builder behind a device, which has got one more call.
SceneBuilder& called(fz_device* device) {
  SceneBuilder& builder = *reinterpret_cast<SceneDevice*>(device)->builder;
  builder.count();
  return builder;
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

uint8_t toByte(float value) {
  return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255));
}

Colour toColour(fz_context* context, const SceneBuilder& builder, fz_colorspace* space,
                const float* value, float alpha, fz_color_params params) {
  if (const Colour* colour = builder.type3Colour()) return *colour;
  float rgb[3] = {0, 0, 0};
  if (space != nullptr)
    fz_convert_color(context, space, value, fz_device_rgb(context), rgb, nullptr, params);
  return {toByte(alpha), toByte(rgb[0]), toByte(rgb[1]), toByte(rgb[2])};
}

Pen toPen(const fz_stroke_state* stroke, fz_matrix m) {
  // The two axes of the ellipse that a circle becomes.
  const float sum = std::hypot(m.a + m.d, m.b - m.c), difference = std::hypot(m.a - m.d, m.b + m.c);
  Pen pen;
  pen.width = stroke->linewidth * std::sqrt(std::abs(m.a * m.d - m.b * m.c));
  pen.skew = stroke->linewidth * std::min(sum, difference);
  pen.cap = stroke->start_cap == FZ_LINECAP_BUTT    ? Cap::kButt
            : stroke->start_cap == FZ_LINECAP_ROUND ? Cap::kRound
                                                    : Cap::kSquare;
  pen.join = stroke->linejoin == FZ_LINEJOIN_ROUND   ? Join::kRound
             : stroke->linejoin == FZ_LINEJOIN_BEVEL ? Join::kBevel
                                                     : Join::kMitre;
  pen.mitreLimit = stroke->miterlimit;
  const float scale = std::sqrt(std::abs(m.a * m.d - m.b * m.c));
  float period = 0;
  for (int i = 0; i < stroke->dash_len; ++i) {
    period += std::abs(stroke->dash_list[i]);
    if (i < static_cast<int>(pen.dashes.size()))
      pen.dashes[static_cast<size_t>(i)] = std::abs(stroke->dash_list[i]) * scale;
  }
  pen.dashCount = period > 0 ? stroke->dash_len : 0;
  pen.dashPhase = stroke->dash_phase * scale;
  return pen;
}

// ---- Paths --------------------------------------------------------------------------------------

void fillPath(fz_context* context, fz_device* device, const fz_path* path, int evenOdd, fz_matrix m,
              fz_colorspace* space, const float* value, float alpha, fz_color_params params) {
  SceneBuilder& builder = called(device);
  const Colour colour = toColour(context, builder, space, value, alpha, params);
  walk(context, builder, path, m);
  builder.addFill(evenOdd != 0, colour);
}

void strokePath(fz_context* context, fz_device* device, const fz_path* path,
                const fz_stroke_state* stroke, fz_matrix m, fz_colorspace* space,
                const float* value, float alpha, fz_color_params params) {
  SceneBuilder& builder = called(device);
  const Colour colour = toColour(context, builder, space, value, alpha, params);
  walk(context, builder, path, m);
  builder.addStroke(toPen(stroke, m), colour);
}

void clipPath(fz_context* context, fz_device* device, const fz_path* path, int evenOdd, fz_matrix m,
              fz_rect) {
  SceneBuilder& builder = called(device);
  walk(context, builder, path, m);
  builder.openClip(evenOdd != 0);
}

void clipStrokePath(fz_context*, fz_device* device, const fz_path*, const fz_stroke_state*,
                    fz_matrix, fz_rect) {
  called(device).openForeign();
}

// ---- Texts --------------------------------------------------------------------------------------

void makeGlyph(fz_context* context, SceneBuilder& builder, fz_font* font, int glyph, fz_matrix m,
               bool vertical) {
  builder.beginPath(fz_identity);
  fz_path* outline = nullptr;
  float advance = 0;
  fz_var(outline);
  fz_var(advance);
  fz_try(context) {
    advance = fz_advance_glyph(context, font, glyph, vertical);
    if (fz_font_t3_procs(context, font) == nullptr)
      outline = fz_outline_glyph(context, font, glyph, m);
    if (outline != nullptr) fz_walk_path(context, outline, &walker, &builder);
  }
  fz_always(context) fz_drop_path(context, outline);
  fz_catch(context) builder.beginPath(fz_identity);  // a glyph that cannot be read has no shape
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
      makeGlyph(context, builder, span->font, item.gid, matrix, span->wmode != 0);
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
  const SceneBuilder& builder = called(device);
  addText(context, device, text, m, {}, toColour(context, builder, space, value, alpha, params));
}

void strokeText(fz_context* context, fz_device* device, const fz_text* text,
                const fz_stroke_state* stroke, fz_matrix m, fz_colorspace* space,
                const float* value, float alpha, fz_color_params params) {
  const SceneBuilder& builder = called(device);
  addText(context, device, text, m, toPen(stroke, m),
          toColour(context, builder, space, value, alpha, params));
}

void clipText(fz_context* context, fz_device* device, const fz_text* text, fz_matrix m, fz_rect) {
  called(device).openForeign();
  addText(context, device, text, m, {}, {}, false);
}

void clipStrokeText(fz_context* context, fz_device* device, const fz_text* text,
                    const fz_stroke_state*, fz_matrix m, fz_rect scissor) {
  clipText(context, device, text, m, scissor);
}

void ignoreText(fz_context* context, fz_device* device, const fz_text* text, fz_matrix m) {
  called(device);
  addText(context, device, text, m, {}, {}, false);
}

// ---- Pictures and shades ------------------------------------------------------------------------

void fillShade(fz_context* context, fz_device* device, fz_shade* shade, fz_matrix m, float,
               fz_color_params) {
  SceneBuilder& builder = called(device);
  builder.addForeign(toBox(fz_bound_shade(context, shade, m)));
}

void fillImage(fz_context* context, fz_device* device, fz_image* image, fz_matrix m, float alpha,
               fz_color_params) {
  addImage(context, called(device), image, m, nullptr, alpha);
}

void fillImageMask(fz_context* context, fz_device* device, fz_image* image, fz_matrix m,
                   fz_colorspace* space, const float* value, float alpha, fz_color_params params) {
  SceneBuilder& builder = called(device);
  const Colour colour = toColour(context, builder, space, value, alpha, params);
  addImage(context, builder, image, m, &colour, 1);
}

void clipImageMask(fz_context*, fz_device* device, fz_image* image, fz_matrix m, fz_rect) {
  called(device).openMask(image, m);
}

// ---- Containers ---------------------------------------------------------------------------------

void close(fz_context*, fz_device* device) { called(device).close(); }

void beginMask(fz_context*, fz_device* device, fz_rect, int, fz_colorspace*, const float*,
               fz_color_params) {
  called(device).openForeign();
}

// What follows is masked, up to a call of pop_clip, which closes what the mask has opened.
void endMask(fz_context*, fz_device* device) { called(device); }

// As CSS names them, in MuPDF's order.
constexpr const char* blendModes[FZ_BLEND_MODEMASK + 1] = {
    nullptr,       "multiply",   "screen",     "overlay",    "darken",     "lighten",
    "color-dodge", "color-burn", "hard-light", "soft-light", "difference", "exclusion",
    "hue",         "saturation", "color",      "luminosity"};

void beginGroup(fz_context*, fz_device* device, fz_rect, fz_colorspace*, int, int, int blendMode,
                float alpha) {
  called(device).openGroup(blendModes[blendMode & FZ_BLEND_MODEMASK], alpha);
}

int beginTile(fz_context*, fz_device* device, fz_rect area, fz_rect, float, float, fz_matrix m,
              int) {
  called(device).openForeign(toBox(fz_transform_rect(area, m)));
  return 0;  // the content is not known from an earlier call
}

}  // namespace

fz_device* newSceneDevice(fz_context* context, SceneBuilder* builder) {
  auto* const device =
      reinterpret_cast<SceneDevice*>(fz_new_device_of_size(context, sizeof(SceneDevice)));
  device->builder = builder;
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
