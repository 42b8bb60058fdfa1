#include <cairo-svg.h>

#include <array>
#include <stdexcept>

#include "peers.h"

namespace bench {
namespace {

class Cairo : public Peer {
 public:
  void beginPage() override {
    text_.clear();
    cairo_surface_t* const surface =
        cairo_svg_surface_create_for_stream(append, &text_, kPageSize, kPageSize);
    cairo_ = cairo_create(surface);
    cairo_surface_destroy(surface);
    hasFill_ = false;
    clearStroke();
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

  void setFont(std::u16string_view, int size, bool, bool) override {
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

  void drawText(std::u16string_view run, const POINT& origin, Advances advances) override {
    glyphs_.clear();
    double x = origin.x;
    for (size_t i = 0; i < run.size(); x += advances.data()[i++])
      glyphs_.push_back({glyphIndex_[run[i]], x, static_cast<double>(origin.y)});
    setSource({0, 0, 0});
    cairo_show_glyphs(cairo_, glyphs_.data(), static_cast<int>(glyphs_.size()));
  }

  void drawPath(Points points, PointTypes types) override {
    cairo_new_path(cairo_);
    trace(points, types, *this);
    if (hasFill_) {
      setSource(fill_);
      cairo_fill_preserve(cairo_);
    }
    if (strokeWidth_ == 0) return;
    setSource(stroke_);
    cairo_set_line_width(cairo_, strokeWidth_);
    cairo_stroke(cairo_);
  }

  void moveTo(int x, int y) { cairo_move_to(cairo_, x, y); }
  void lineTo(int x, int y) { cairo_line_to(cairo_, x, y); }
  void curveTo(auto... coordinates) { cairo_curve_to(cairo_, coordinates...); }
  void close() { cairo_close_path(cairo_); }

 private:
  static cairo_status_t append(void* text, const unsigned char* data, unsigned length) {
    static_cast<std::string*>(text)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
  }

  void setSource(Colour colour) {
    cairo_set_source_rgb(cairo_, colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0);
  }

  cairo_t* cairo_ = nullptr;
  std::array<unsigned long, 128> glyphIndex_ = {};
  std::vector<cairo_glyph_t> glyphs_;
  std::string text_;
};

}  // namespace

std::unique_ptr<Peer> makeCairo() { return std::make_unique<Cairo>(); }

}  // namespace bench
