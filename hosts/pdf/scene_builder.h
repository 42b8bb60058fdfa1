// Collects what the engine's device is told, as a scene. Part of the engine.
//
// All members but the constructors, finish() and clear() may be called from MuPDF's callbacks: they
// throw nothing. What goes wrong in them is thrown by finish().
#pragma once

#include <exception>
#include <map>
#include <tuple>
#include <unordered_map>

#include "mupdf.h"
#include "scene.h"

namespace qz::pdf {

// The outlines of a document's glyphs, made once for each face and size, and their shapes, made
// once for each face and the form that it is given.
class GlyphCache {
 public:
  using Indices = std::unordered_map<int, uint32_t>;  // from glyphs to indices
  struct Design {
    uint32_t number = 0;
    fz_matrix matrix = fz_identity;  // from the face's own coordinates to shapes
    Indices shapes;
  };
  struct Face {
    Indices outlines;
    Design* design = nullptr;  // null when its text is not level
  };

  explicit GlyphCache(fz_context* context) : context_(context) { clear(); }
  GlyphCache(const GlyphCache&) = delete;
  GlyphCache& operator=(const GlyphCache&) = delete;
  ~GlyphCache() { dropFonts(); }

  Face& face(fz_font* font, fz_matrix matrix);
  void add(Face& face, int glyph, Outline outline);
  uint32_t add(Design& design, int glyph, Shape shape);
  const std::vector<Outline>& outlines() const { return outlines_; }
  const std::vector<Shape>& shapes() const { return shapes_; }
  // Forgets everything when it has become large. Only between pages.
  void trim();

 private:
  void clear();
  void dropFonts();
  Design* design(fz_font* font, fz_matrix matrix);

  fz_context* context_;
  std::map<std::tuple<fz_font*, float, float, float, float>, Face> faces_;
  std::map<std::tuple<fz_font*, float, float, float>, Design> designs_;
  std::vector<fz_font*> fonts_;  // kept, so that no other font gets the address of one
  std::vector<Outline> outlines_;
  std::vector<Shape> shapes_;
  size_t points_ = 0;
};

// An image as it is used: by the same key it looks the same.
struct PictureKey {
  enum class Use : uint8_t { kShown, kStencil, kMask };
  fz_image* image = nullptr;
  Use use = Use::kShown;
  uint32_t colour = 0;  // of a stencil
  auto operator<=>(const PictureKey&) const = default;
};

class PictureCache {
 public:
  explicit PictureCache(fz_context* context) : context_(context) {}
  PictureCache(const PictureCache&) = delete;
  PictureCache& operator=(const PictureCache&) = delete;
  ~PictureCache() { clear(); }

  std::shared_ptr<const Picture> find(const PictureKey& key) const;
  void add(const PictureKey& key, std::shared_ptr<const Picture> picture);
  void trim();

 private:
  void clear();

  fz_context* context_;
  std::map<PictureKey, std::shared_ptr<const Picture>> pictures_;
  size_t bytes_ = 0;
};

class SceneBuilder {
 public:
  SceneBuilder(GlyphCache& glyphs, PictureCache& pictures);

  // What is drawn from now on belongs to this field; -1 ends that.
  void setField(int field) noexcept { field_ = field; }
  // The scene's root. Throws what went wrong.
  Node finish();

  // Paths: begun, walked over and used.
  void beginPath(fz_matrix matrix) noexcept;
  void moveTo(float x, float y) noexcept;
  void lineTo(float x, float y) noexcept;
  void curveTo(float x1, float y1, float x2, float y2, float x3, float y3) noexcept;
  void closePath() noexcept;

  void addFill(bool evenOdd, Colour colour) noexcept;
  void addStroke(const Pen& pen, Colour colour) noexcept;
  // Its colours, three bytes each, are those at equal distances.
  void addShade(const GradientShape& shape, const uint8_t* colours, int count, Box bounds,
                float alpha) noexcept;

  // Texts: begun, filled glyph by glyph and used. Glyphs are made when they are not known.
  void beginText(fz_font* font, fz_matrix matrix, bool vertical, bool drawn) noexcept;
  bool knowsGlyph(int glyph) const noexcept;
  // Its path is walked over, as it is in the face.
  void beginGlyph() noexcept { beginPath(fz_identity); }
  void addGlyph(int glyph, float advance) noexcept;
  void putGlyph(int glyph, Point origin, int character) noexcept;  // -1 continues the one before
  void addText(const Pen& pen, Colour colour) noexcept;

  // While a glyph of a Type 3 font is drawn; its own colours count unless it is a mask.
  void beginType3(bool isMask, Colour colour) noexcept;
  void endType3() noexcept { --type3Depth_; }
  const Colour* type3Colour() const noexcept {
    return type3Depth_ > 0 && type3IsMask_ ? &type3Colour_ : nullptr;
  }

  bool knowsPicture(const PictureKey& key) const noexcept;
  void storePicture(const PictureKey& key, qzsvggen::ImageFormat format, const uint8_t* data,
                    size_t size) noexcept;
  // `pixels` is what it measures across and down. Large ones may be smoothed or not.
  void addPicture(const PictureKey& key, Matrix matrix, Point pixels, bool smooth,
                  float alpha) noexcept;
  // One that only the engine could draw.
  void addBitmap(const uint8_t* png, size_t size, Matrix matrix) noexcept;
  int bitmaps() const noexcept { return bitmaps_; }

  void openClip(bool evenOdd) noexcept;
  void openGroup(const char* blendMode, float alpha) noexcept;
  void openTile(const Tile& tile, Box bounds) noexcept;
  // A tile is drawn where it lies first, which need not be on the page.
  bool isInTile() const noexcept;
  // What is drawn next is a mask, up to beginMasked(); what is drawn then shows through it.
  void openMask(bool luminous, Colour backdrop) noexcept;
  void beginMasked() noexcept { close(); }
  void close() noexcept;

 private:
  // Runs C++ below MuPDF: nothing is thrown into it.
  template <class Body>
  void keep(const Body& body) noexcept {
    try {
      if (!failure_) body();
    } catch (...) {
      failure_ = std::current_exception();
    }
  }

  Point map(float x, float y) const {
    return {x * m_.a + y * m_.c + m_.e, x * m_.b + y * m_.d + m_.f};
  }
  void addPoint(Point p, uint8_t type);
  Node leaf(Kind kind) const;
  void add(Node node);
  uint32_t shapeOf(GlyphCache::Design& design, int glyph, float advance);

  GlyphCache& glyphs_;
  PictureCache& pictures_;
  std::exception_ptr failure_;
  std::vector<Node> open_;
  int bitmaps_ = 0;
  int field_ = -1;

  fz_matrix m_ = {};
  Path path_;
  Point start_;
  bool atStart_ = true;  // the current figure has no points yet

  Text text_;
  GlyphCache::Face* face_ = nullptr;
  fz_matrix textMatrix_ = fz_identity;

  int type3Depth_ = 0;
  bool type3IsMask_ = false;
  Colour type3Colour_;
};

}  // namespace qz::pdf
