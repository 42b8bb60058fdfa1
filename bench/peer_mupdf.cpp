#include <mupdf/fitz.h>

#include <array>

#include "peers.h"

namespace bench {
namespace {

class MuPdf : public Peer {
 public:
  MuPdf() : context_(fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT)) {
    buffer_ = fz_new_buffer(context_, 1 << 20);
    font_ = fz_new_base14_font(context_, "Helvetica");
    pen_ = fz_new_stroke_state(context_);
    for (size_t i = ' '; i < glyphIndex_.size(); ++i)
      glyphIndex_[i] = fz_encode_character(context_, font_, static_cast<int>(i));
  }

  ~MuPdf() override {
    fz_drop_stroke_state(context_, pen_);
    fz_drop_font(context_, font_);
    fz_drop_buffer(context_, buffer_);
    fz_drop_context(context_);
  }

  std::string version() const override { return "MuPDF " FZ_VERSION; }

  void beginPage() override {
    fz_clear_buffer(context_, buffer_);
    output_ = fz_new_output_with_buffer(context_, buffer_);
    device_ = fz_new_svg_device(context_, output_, kPageSize, kPageSize, FZ_SVG_TEXT_AS_TEXT, 1);
    fill_.reset();
    strokeWidth_ = 0;
  }

  void endPage() override {
    fz_close_device(context_, device_);
    fz_drop_device(context_, device_);
    fz_close_output(context_, output_);
    fz_drop_output(context_, output_);
  }

  void font(int size) override { fontSize_ = static_cast<float>(size); }

  void text(std::u16string_view run, const POINT& origin, const int32_t* advances) override {
    fz_text* const text = fz_new_text(context_);
    fz_point at = point(origin);
    for (size_t i = 0; i < run.size(); at.x += static_cast<float>(advances[i++]))
      fz_show_glyph(context_, text, font_, fz_make_matrix(fontSize_, 0, 0, -fontSize_, at.x, at.y),
                    glyphIndex_[run[i]], run[i], 0, 0, FZ_BIDI_NEUTRAL, FZ_LANG_UNSET);
    fz_fill_text(context_, device_, text, fz_identity, fz_device_rgb(context_), Rgb({}).value, 1,
                 fz_default_color_params);
    fz_drop_text(context_, text);
  }

 private:
  struct Rgb {
    explicit Rgb(Colour c) : value{c.red / 255.0f, c.green / 255.0f, c.blue / 255.0f} {}
    float value[3];
  };
  static fz_point point(const POINT& p) {
    return {static_cast<float>(p.x), static_cast<float>(p.y)};
  }

  void beginPath() override { path_ = fz_new_path(context_); }
  void moveTo(const POINT& p) override { fz_moveto(context_, path_, point(p).x, point(p).y); }
  void lineTo(const POINT& p) override { fz_lineto(context_, path_, point(p).x, point(p).y); }
  void curveTo(const POINT& a, const POINT& b, const POINT& c) override {
    fz_curveto(context_, path_, point(a).x, point(a).y, point(b).x, point(b).y, point(c).x,
               point(c).y);
  }
  void closeFigure() override { fz_closepath(context_, path_); }
  void addRectangle(const RECT& box) override {
    const fz_point from = point({box.left, box.top}), to = point({box.right, box.bottom});
    fz_rectto(context_, path_, from.x, from.y, to.x, to.y);
  }
  void paintPath() override {
    fz_colorspace* const space = fz_device_rgb(context_);
    if (fill_)
      fz_fill_path(context_, device_, path_, 0, fz_identity, space, Rgb(*fill_).value, 1,
                   fz_default_color_params);
    if (strokeWidth_ != 0) {
      pen_->linewidth = static_cast<float>(strokeWidth_);
      fz_stroke_path(context_, device_, path_, pen_, fz_identity, space, Rgb(stroke_).value, 1,
                     fz_default_color_params);
    }
    fz_drop_path(context_, path_);
  }

  fz_context* context_;
  fz_buffer* buffer_;
  fz_font* font_;
  fz_stroke_state* pen_;
  fz_output* output_ = nullptr;
  fz_device* device_ = nullptr;
  fz_path* path_ = nullptr;
  float fontSize_ = 0;
  std::array<int, 128> glyphIndex_ = {};
};

}  // namespace

std::unique_ptr<Peer> makeMuPdf() { return std::make_unique<MuPdf>(); }

}  // namespace bench
