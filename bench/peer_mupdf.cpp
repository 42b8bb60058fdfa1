#include <mupdf/fitz.h>

#include "peers.h"

namespace bench {
namespace {

class MuPdf : public Peer {
 public:
  ~MuPdf() override {
    fz_drop_stroke_state(context_, pen_);
    fz_drop_font(context_, font_);
    fz_drop_buffer(context_, buffer_);
    fz_drop_context(context_);
  }

  void beginPage() override {
    fz_clear_buffer(context_, buffer_);
    output_ = fz_new_output_with_buffer(context_, buffer_);
    device_ = fz_new_svg_device(context_, output_, kPageSize, kPageSize, FZ_SVG_TEXT_AS_TEXT, 1);
    hasFill_ = false;
    clearStroke();
  }

  void endPage() override {
    fz_close_device(context_, device_);
    fz_drop_device(context_, device_);
    fz_close_output(context_, output_);
    fz_drop_output(context_, output_);
  }

  void setFont(std::u16string_view, int size, bool, bool) override {
    fontSize_ = static_cast<float>(size);
  }

  void drawText(std::u16string_view run, const POINT& origin, Advances advances) override {
    fz_text* const text = fz_new_text(context_);
    fz_matrix place = {
        fontSize_, 0, 0, -fontSize_, static_cast<float>(origin.x), static_cast<float>(origin.y)};
    for (size_t i = 0; i < run.size(); place.e += static_cast<float>(advances.data()[i++]))
      fz_show_glyph(context_, text, font_, place, fz_encode_character(context_, font_, run[i]),
                    run[i], 0, 0, FZ_BIDI_NEUTRAL, FZ_LANG_UNSET);
    fz_fill_text(context_, device_, text, fz_identity, fz_device_rgb(context_), Rgb({}).value, 1,
                 fz_default_color_params);
    fz_drop_text(context_, text);
  }

  void drawPath(Points points, PointTypes types) override {
    path_ = fz_new_path(context_);
    trace(points, types, *this);
    fz_colorspace* const space = fz_device_rgb(context_);
    if (hasFill_)
      fz_fill_path(context_, device_, path_, 0, fz_identity, space, Rgb(fill_).value, 1,
                   fz_default_color_params);
    pen_->linewidth = static_cast<float>(strokeWidth_);
    if (strokeWidth_ != 0)
      fz_stroke_path(context_, device_, path_, pen_, fz_identity, space, Rgb(stroke_).value, 1,
                     fz_default_color_params);
    fz_drop_path(context_, path_);
  }

  void moveTo(auto... xy) { fz_moveto(context_, path_, static_cast<float>(xy)...); }
  void lineTo(auto... xy) { fz_lineto(context_, path_, static_cast<float>(xy)...); }
  void curveTo(auto... xy) { fz_curveto(context_, path_, static_cast<float>(xy)...); }
  void close() { fz_closepath(context_, path_); }

 private:
  struct Rgb {
    explicit Rgb(Colour c) : value{c.red / 255.0f, c.green / 255.0f, c.blue / 255.0f} {}
    float value[3];
  };

  fz_context* context_ = fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT);
  fz_buffer* buffer_ = fz_new_buffer(context_, 1 << 20);
  fz_font* font_ = fz_new_base14_font(context_, "Helvetica");
  fz_stroke_state* pen_ = fz_new_stroke_state(context_);
  fz_output* output_ = nullptr;
  fz_device* device_ = nullptr;
  fz_path* path_ = nullptr;
  float fontSize_ = 0;
};

}  // namespace

std::unique_ptr<Peer> makeMuPdf() { return std::make_unique<MuPdf>(); }

}  // namespace bench
