#include <cairo-svg.h>

#include <array>
#include <stdexcept>
#include <vector>

#include "peers.h"

namespace bench {
namespace {

class Cairo : public Peer {
 public:
  std::string version() const override { return std::string("Cairo ") + cairo_version_string(); }

  void beginPage() override {
    text_.clear();
    cairo_surface_t* const surface =
        cairo_svg_surface_create_for_stream(append, this, kPageSize, kPageSize);
    cairo_ = cairo_create(surface);
    cairo_surface_destroy(surface);
    fill_.reset();
    strokeWidth_ = 0;
    // Over an opaque background the surface may write the shapes as they come.
    setSource({255, 255, 255});
    cairo_paint(cairo_);
  }

  void endPage() override {
    cairo_surface_finish(cairo_get_target(cairo_));
    const cairo_status_t status = cairo_status(cairo_);
    cairo_destroy(cairo_);
    if (status != CAIRO_STATUS_SUCCESS) throw std::runtime_error(cairo_status_to_string(status));
  }

  void font(int size) override {
    cairo_select_font_face(cairo_, "sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo_, size);
    if (glyphIndex_['e'] != 0) return;
    for (size_t i = ' '; i < glyphIndex_.size(); ++i) {
      const auto character = static_cast<char>(i);
      cairo_glyph_t* glyph = nullptr;
      int count = 0;
      cairo_scaled_font_text_to_glyphs(cairo_get_scaled_font(cairo_), 0, 0, &character, 1, &glyph,
                                       &count, nullptr, nullptr, nullptr);
      if (count > 0) glyphIndex_[i] = glyph->index;
      cairo_glyph_free(glyph);
    }
  }

  void text(std::u16string_view run, const POINT& origin, const int32_t* advances) override {
    glyphs_.clear();
    double x = origin.x;
    for (size_t i = 0; i < run.size(); x += advances[i++])
      glyphs_.push_back({glyphIndex_[run[i]], x, static_cast<double>(origin.y)});
    setSource({0, 0, 0});
    cairo_show_glyphs(cairo_, glyphs_.data(), static_cast<int>(glyphs_.size()));
  }

 private:
  static cairo_status_t append(void* self, const unsigned char* data, unsigned length) {
    auto& text = static_cast<Cairo*>(self)->text_;
    text.insert(text.end(), data, data + length);
    return CAIRO_STATUS_SUCCESS;
  }

  void setSource(Colour colour) {
    cairo_set_source_rgb(cairo_, colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0);
  }

  void beginPath() override { cairo_new_path(cairo_); }
  void moveTo(const POINT& p) override { cairo_move_to(cairo_, p.x, p.y); }
  void lineTo(const POINT& p) override { cairo_line_to(cairo_, p.x, p.y); }
  void curveTo(const POINT& a, const POINT& b, const POINT& c) override {
    cairo_curve_to(cairo_, a.x, a.y, b.x, b.y, c.x, c.y);
  }
  void closeFigure() override { cairo_close_path(cairo_); }
  void addRectangle(const RECT& box) override {
    cairo_rectangle(cairo_, box.left, box.top, box.right - box.left, box.bottom - box.top);
  }
  void paintPath() override {
    if (fill_) {
      setSource(*fill_);
      cairo_fill_preserve(cairo_);
    }
    if (strokeWidth_ == 0) return;
    setSource(stroke_);
    cairo_set_line_width(cairo_, strokeWidth_);
    cairo_stroke_preserve(cairo_);
  }

  cairo_t* cairo_ = nullptr;
  std::array<unsigned long, 128> glyphIndex_ = {};
  std::vector<cairo_glyph_t> glyphs_;
  std::vector<unsigned char> text_;
};

}  // namespace

std::unique_ptr<Peer> makeCairo() { return std::make_unique<Cairo>(); }

}  // namespace bench
