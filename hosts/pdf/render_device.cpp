// The device that draws parts of a page as pictures. It counts its calls as the scene device does.
// In these functions MuPDF's calls may jump out: they own nothing.
#include "scene_device.h"

namespace qz::pdf {
namespace {

struct RenderDevice {
  fz_device base;
  std::vector<RenderTarget>* targets;
  size_t finished;  // so many of the targets have got all their calls
  uint32_t calls;
};

// Counts a call and repeats it on each target that it is meant for.
template <class Call>
void repeat(fz_device* base, const Call& call) {
  RenderDevice& device = *reinterpret_cast<RenderDevice*>(base);
  ++device.calls;
  for (size_t i = device.finished; i < device.targets->size(); ++i) {
    RenderTarget& target = (*device.targets)[i];
    const std::vector<Calls>& ranges = *target.calls;
    while (target.next < ranges.size() && ranges[target.next].last < device.calls) ++target.next;
    if (target.next == ranges.size()) {
      if (i == device.finished) ++device.finished;
      continue;
    }
    if (target.onPage || ranges[target.next].first <= device.calls)
      call(target.device, target.matrix);
    else
      break;  // and the targets behind it begin later still
  }
}

void fillPath(fz_context* c, fz_device* device, const fz_path* path, int evenOdd, fz_matrix m,
              fz_colorspace* space, const float* value, float alpha, fz_color_params params) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_fill_path(c, to, path, evenOdd, fz_concat(m, px), space, value, alpha, params);
  });
}

void strokePath(fz_context* c, fz_device* device, const fz_path* path, const fz_stroke_state* pen,
                fz_matrix m, fz_colorspace* space, const float* value, float alpha,
                fz_color_params params) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_stroke_path(c, to, path, pen, fz_concat(m, px), space, value, alpha, params);
  });
}

void clipPath(fz_context* c, fz_device* device, const fz_path* path, int evenOdd, fz_matrix m,
              fz_rect scissor) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_clip_path(c, to, path, evenOdd, fz_concat(m, px), fz_transform_rect(scissor, px));
  });
}

void clipStrokePath(fz_context* c, fz_device* device, const fz_path* path,
                    const fz_stroke_state* pen, fz_matrix m, fz_rect scissor) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_clip_stroke_path(c, to, path, pen, fz_concat(m, px), fz_transform_rect(scissor, px));
  });
}

void fillText(fz_context* c, fz_device* device, const fz_text* text, fz_matrix m,
              fz_colorspace* space, const float* value, float alpha, fz_color_params params) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_fill_text(c, to, text, fz_concat(m, px), space, value, alpha, params);
  });
}

void strokeText(fz_context* c, fz_device* device, const fz_text* text, const fz_stroke_state* pen,
                fz_matrix m, fz_colorspace* space, const float* value, float alpha,
                fz_color_params params) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_stroke_text(c, to, text, pen, fz_concat(m, px), space, value, alpha, params);
  });
}

void clipText(fz_context* c, fz_device* device, const fz_text* text, fz_matrix m, fz_rect scissor) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_clip_text(c, to, text, fz_concat(m, px), fz_transform_rect(scissor, px));
  });
}

void clipStrokeText(fz_context* c, fz_device* device, const fz_text* text,
                    const fz_stroke_state* pen, fz_matrix m, fz_rect scissor) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_clip_stroke_text(c, to, text, pen, fz_concat(m, px), fz_transform_rect(scissor, px));
  });
}

void ignoreText(fz_context*, fz_device* device, const fz_text*, fz_matrix) {
  repeat(device, [](fz_device*, fz_matrix) {});
}

void fillShade(fz_context* c, fz_device* device, fz_shade* shade, fz_matrix m, float alpha,
               fz_color_params params) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_fill_shade(c, to, shade, fz_concat(m, px), alpha, params);
  });
}

void fillImage(fz_context* c, fz_device* device, fz_image* image, fz_matrix m, float alpha,
               fz_color_params params) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_fill_image(c, to, image, fz_concat(m, px), alpha, params);
  });
}

void fillImageMask(fz_context* c, fz_device* device, fz_image* image, fz_matrix m,
                   fz_colorspace* space, const float* value, float alpha, fz_color_params params) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_fill_image_mask(c, to, image, fz_concat(m, px), space, value, alpha, params);
  });
}

void clipImageMask(fz_context* c, fz_device* device, fz_image* image, fz_matrix m,
                   fz_rect scissor) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_clip_image_mask(c, to, image, fz_concat(m, px), fz_transform_rect(scissor, px));
  });
}

void popClip(fz_context* c, fz_device* device) {
  repeat(device, [&](fz_device* to, fz_matrix) { fz_pop_clip(c, to); });
}

void beginMask(fz_context* c, fz_device* device, fz_rect area, int luminosity, fz_colorspace* space,
               const float* backdrop, fz_color_params params) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_begin_mask(c, to, fz_transform_rect(area, px), luminosity, space, backdrop, params);
  });
}

void endMask(fz_context* c, fz_device* device) {
  repeat(device, [&](fz_device* to, fz_matrix) { fz_end_mask(c, to); });
}

void beginGroup(fz_context* c, fz_device* device, fz_rect area, fz_colorspace* space, int isolated,
                int knockout, int blendMode, float alpha) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_begin_group(c, to, fz_transform_rect(area, px), space, isolated, knockout, blendMode, alpha);
  });
}

void endGroup(fz_context* c, fz_device* device) {
  repeat(device, [&](fz_device* to, fz_matrix) { fz_end_group(c, to); });
}

int beginTile(fz_context* c, fz_device* device, fz_rect area, fz_rect view, float xStep,
              float yStep, fz_matrix m, int) {
  repeat(device, [&](fz_device* to, fz_matrix px) {
    fz_begin_tile(c, to, area, view, xStep, yStep, fz_concat(m, px));
  });
  return 0;
}

void endTile(fz_context* c, fz_device* device) {
  repeat(device, [&](fz_device* to, fz_matrix) { fz_end_tile(c, to); });
}

}  // namespace

fz_device* newRenderDevice(fz_context* context, std::vector<RenderTarget>* targets) {
  auto* const device =
      reinterpret_cast<RenderDevice*>(fz_new_device_of_size(context, sizeof(RenderDevice)));
  device->targets = targets;
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
  base.pop_clip = popClip;
  base.begin_mask = beginMask;
  base.end_mask = endMask;
  base.begin_group = beginGroup;
  base.end_group = endGroup;
  base.begin_tile = beginTile;
  base.end_tile = endTile;
  return &base;
}

}  // namespace qz::pdf
