#include "scene_builder.h"

#include "gradient.h"

namespace qz::pdf {
namespace {

// What text can hold: neither what XML refuses nor what says that nothing is known.
char32_t textCharacter(int code) {
  if (code == '\t' || code == '\n' || code == '\r') return ' ';
  const bool unknown = code < 0x20 || code == 0x7F || (code >= 0xD800 && code < 0xE000) ||
                       (code >= 0xFFFD && code <= 0xFFFF) || code > 0x10FFFF;
  return unknown ? 0 : static_cast<char32_t>(code);
}

// How far a stroke reaches beyond its path; a mitre farther than that is rare.
float reach(const Pen& pen) { return pen.width * (pen.join == Join::kMitre ? 1.0f : 0.71f); }

}  // namespace

// ---- Caches -------------------------------------------------------------------------------------

GlyphCache::Face& GlyphCache::face(fz_font* font, fz_matrix m) {
  const auto [found, isNew] = faces_.try_emplace({font, m.a, m.b, m.c, m.d});
  if (isNew) {
    fonts_.reserve(fonts_.size() + 1);
    fonts_.push_back(fz_keep_font(context_, font));
    found->second.design = design(font, m);
  }
  return found->second;
}

// Text that is level and runs to the right can be set in a font: what else its matrix says, such as
// a slant, goes into the shapes.
GlyphCache::Design* GlyphCache::design(fz_font* font, fz_matrix m) {
  const float size = std::hypot(m.c, m.d);
  const bool level = size > 1 && m.a > 0 && std::abs(m.b) < 0.001f * m.a && m.a < 10 * size;
  if (!level || fz_font_t3_procs(context_, font) != nullptr) return nullptr;
  // Whole numbers, so that texts of about the same form share shapes whichever comes first.
  const float scale = 1000 / size;
  const fz_matrix form = {std::round(m.a * scale),  0, std::round(m.c * scale),
                          std::round(-m.d * scale), 0, 0};
  const auto [found, isNew] = designs_.try_emplace({font, form.a, form.c, form.d});
  Design& design = found->second;
  if (isNew) {
    design.number = static_cast<uint32_t>(designs_.size());
    design.matrix = form;
  }
  return &design;
}

void GlyphCache::add(Face& face, int glyph, Outline outline) {
  points_ += outline.points.size();
  outlines_.push_back(std::move(outline));
  face.outlines[glyph] = static_cast<uint32_t>(outlines_.size() - 1);
}

uint32_t GlyphCache::add(Design& design, int glyph, Shape shape) {
  points_ += shape.points.size();
  shapes_.push_back(std::move(shape));
  return design.shapes[glyph] = static_cast<uint32_t>(shapes_.size() - 1);
}

void GlyphCache::trim() {
  if (points_ > 1'000'000 || faces_.size() > 5'000) clear();
}

void GlyphCache::clear() {
  dropFonts();
  faces_.clear();
  designs_.clear();
  outlines_.assign(1, Outline{});
  shapes_.assign(1, Shape{});
  points_ = 0;
}

void GlyphCache::dropFonts() {
  for (fz_font* font : fonts_) fz_drop_font(context_, font);
  fonts_.clear();
}

std::shared_ptr<const Picture> PictureCache::find(const PictureKey& key) const {
  const auto found = pictures_.find(key);
  return found == pictures_.end() ? nullptr : found->second;
}

void PictureCache::add(const PictureKey& key, std::shared_ptr<const Picture> picture) {
  const auto [place, isNew] = pictures_.emplace(key, std::move(picture));
  if (!isNew) return;
  fz_keep_image(context_, key.image);
  bytes_ += place->second->bytes.size();
}

void PictureCache::trim() {
  if (bytes_ > 16'000'000 || pictures_.size() > 2'000) clear();
}

void PictureCache::clear() {
  for (const auto& [key, picture] : pictures_) fz_drop_image(context_, key.image);
  pictures_.clear();
  bytes_ = 0;
}

// ---- The tree -----------------------------------------------------------------------------------

SceneBuilder::SceneBuilder(GlyphCache& glyphs, PictureCache& pictures)
    : glyphs_(glyphs), pictures_(pictures), open_(1) {}

Node SceneBuilder::finish() {
  while (open_.size() > 1) close();
  if (failure_) std::rethrow_exception(failure_);
  return std::move(open_.front());
}

Node SceneBuilder::leaf(Kind kind) const {
  Node node;
  node.kind = kind;
  node.field = field_;
  return node;
}

// A mask and the copies of a tile do not count for the bounds.
void SceneBuilder::add(Node node) {
  Node& parent = open_.back();
  const bool drawnThere =
      parent.kind == Kind::kMask ? !parent.children.empty() : parent.kind != Kind::kTile;
  if (drawnThere) parent.bounds.include(node.bounds);
  parent.children.push_back(std::move(node));
}

void SceneBuilder::openClip(bool evenOdd) noexcept {
  keep([&] {
    Node node = leaf(Kind::kClip);
    node.evenOdd = evenOdd;
    node.content = path_;
    open_.push_back(std::move(node));
  });
}

void SceneBuilder::openGroup(const char* blendMode, float alpha) noexcept {
  keep([&] {
    Node node = leaf(Kind::kGroup);
    node.blendMode = blendMode;
    node.alpha = alpha;
    open_.push_back(std::move(node));
  });
}

void SceneBuilder::openTile(const Tile& tile, Box bounds) noexcept {
  keep([&] {
    Node node = leaf(Kind::kTile);
    node.content = tile;
    node.bounds = bounds;
    open_.push_back(std::move(node));
  });
}

bool SceneBuilder::isInTile() const noexcept {
  return std::any_of(open_.begin(), open_.end(),
                     [](const Node& node) { return node.kind == Kind::kTile; });
}

void SceneBuilder::openMask(bool luminous, Colour backdrop) noexcept {
  keep([&] {
    Node node = leaf(Kind::kMask);
    node.luminous = luminous;
    node.colour = backdrop;
    open_.push_back(std::move(node));
    open_.push_back(leaf(Kind::kGroup));
  });
}

void SceneBuilder::close() noexcept {
  keep([&] {
    if (open_.size() < 2) return;
    Node node = std::move(open_.back());
    open_.pop_back();
    const Node& parent = open_.back();
    const bool isMask = parent.kind == Kind::kMask && parent.children.empty();
    const size_t least = node.kind == Kind::kMask ? 2 : 1;
    if (isMask || node.children.size() >= least) add(std::move(node));
  });
}

// ---- Paths --------------------------------------------------------------------------------------

void SceneBuilder::beginPath(fz_matrix matrix) noexcept {
  m_ = matrix;
  path_.points.clear();
  path_.types.clear();
  atStart_ = true;
  start_ = {};
}

void SceneBuilder::addPoint(Point p, uint8_t type) {
  path_.points.push_back(p);
  path_.types.push_back(type);
}

void SceneBuilder::moveTo(float x, float y) noexcept {
  start_ = map(x, y);
  atStart_ = true;
}

void SceneBuilder::lineTo(float x, float y) noexcept {
  keep([&] {
    if (atStart_) addPoint(start_, PT_MOVETO);
    atStart_ = false;
    addPoint(map(x, y), PT_LINETO);
  });
}

void SceneBuilder::curveTo(float x1, float y1, float x2, float y2, float x3, float y3) noexcept {
  keep([&] {
    if (atStart_) addPoint(start_, PT_MOVETO);
    atStart_ = false;
    addPoint(map(x1, y1), PT_BEZIERTO);
    addPoint(map(x2, y2), PT_BEZIERTO);
    addPoint(map(x3, y3), PT_BEZIERTO);
  });
}

void SceneBuilder::closePath() noexcept {
  if (!atStart_ && !path_.types.empty()) path_.types.back() |= PT_CLOSEFIGURE;
  atStart_ = true;  // what follows without a move starts where this figure did
}

void SceneBuilder::addFill(bool evenOdd, Colour colour) noexcept {
  keep([&] {
    if (path_.points.empty()) return;
    Node node = leaf(Kind::kFill);
    node.evenOdd = evenOdd;
    node.colour = colour;
    node.bounds = boundsOf(path_.points);
    node.content = path_;
    add(std::move(node));
  });
}

void SceneBuilder::addStroke(const Pen& pen, Colour colour) noexcept {
  keep([&] {
    if (path_.points.empty()) return;
    Node node = leaf(Kind::kStroke);
    node.pen = pen;
    node.colour = colour;
    node.bounds = boundsOf(path_.points).grown(reach(pen));
    node.content = path_;
    add(std::move(node));
  });
}

void SceneBuilder::addShade(const GradientShape& shape, const uint8_t* colours, int count,
                            Box bounds, float alpha) noexcept {
  keep([&] {
    Node node = leaf(Kind::kShade);
    node.alpha = alpha;
    node.bounds = bounds;
    node.content = std::make_shared<const Gradient>(makeGradient(shape, colours, count));
    add(std::move(node));
  });
}

// ---- Texts --------------------------------------------------------------------------------------

void SceneBuilder::beginText(fz_font* font, fz_matrix m, bool vertical, bool drawn) noexcept {
  keep([&] {
    face_ = &glyphs_.face(font, m);
    textMatrix_ = m;
    text_ = {};
    text_.drawn = drawn;
    text_.size = std::hypot(m.c, m.d);
    if (face_->design != nullptr && !vertical) text_.design = face_->design->number;
    const Point line = vertical ? Point{-m.c, -m.d} : Point{m.a, m.b};
    const float scale = length(line);
    if (scale > 0) text_.along = {line.x / scale, line.y / scale};
  });
}

bool SceneBuilder::knowsGlyph(int glyph) const noexcept {
  return failure_ || face_->outlines.find(glyph) != face_->outlines.end();
}

void SceneBuilder::addGlyph(int glyph, float advance) noexcept {
  keep([&] {
    Outline outline;
    outline.advance = std::abs(advance) * std::hypot(textMatrix_.a, textMatrix_.b);
    m_ = textMatrix_;
    for (const Point p : path_.points) {
      outline.points.push_back(toUnits(map(p.x, p.y)));
      outline.bounds.include(map(p.x, p.y));
    }
    outline.types = path_.types;
    for (size_t i = 0; i < outline.types.size(); ++i)  // a filled figure is closed anyway
      if (i + 1 == outline.types.size() || outline.types[i + 1] == PT_MOVETO)
        outline.types[i] |= PT_CLOSEFIGURE;
    if (face_->design != nullptr) outline.shape = shapeOf(*face_->design, glyph, advance);
    glyphs_.add(*face_, glyph, std::move(outline));
  });
}

uint32_t SceneBuilder::shapeOf(GlyphCache::Design& design, int glyph, float advance) {
  const auto known = design.shapes.find(glyph);
  if (known != design.shapes.end()) return known->second;
  const auto toShape = [](float value) {
    constexpr float limit = 16'000;  // of a font's numbers
    return toUnits(std::clamp(value, -limit, limit));
  };
  Shape shape;
  shape.advance = toShape(std::abs(advance) * design.matrix.a);
  shape.types = path_.types;
  m_ = design.matrix;
  for (const Point p : path_.points) {
    const Point mapped = map(p.x, p.y);
    shape.points.push_back({toShape(mapped.x), toShape(mapped.y)});
  }
  return glyphs_.add(design, glyph, std::move(shape));
}

void SceneBuilder::putGlyph(int glyph, Point origin, int character) noexcept {
  keep([&] {
    Glyph item;
    item.continued = glyph < 0;
    if (!item.continued) item.outline = face_->outlines.at(glyph);
    item.character = textCharacter(character);
    item.origin = origin;
    text_.glyphs.push_back(item);
  });
}

void SceneBuilder::addText(const Pen& pen, Colour colour) noexcept {
  keep([&] {
    if (text_.glyphs.empty()) return;
    Node node = leaf(Kind::kText);
    for (const Glyph& glyph : text_.glyphs) {
      const Box& box = glyphs_.outlines()[glyph.outline].bounds;
      if (!box.empty()) node.bounds.include(box.moved(glyph.origin));
    }
    if (!node.bounds.empty()) node.bounds = node.bounds.grown(reach(pen));
    node.pen = pen;
    node.colour = colour;
    node.content = std::move(text_);
    add(std::move(node));
  });
}

void SceneBuilder::beginType3(bool isMask, Colour colour) noexcept {
  if (type3Depth_++ > 0) return;
  type3IsMask_ = isMask;
  type3Colour_ = colour;
}

// ---- Pictures -----------------------------------------------------------------------------------

bool SceneBuilder::knowsPicture(const PictureKey& key) const noexcept {
  return failure_ || pictures_.find(key) != nullptr;
}

void SceneBuilder::storePicture(const PictureKey& key, qzsvggen::ImageFormat format,
                                const uint8_t* data, size_t size) noexcept {
  keep([&] {
    pictures_.add(key,
                  std::make_shared<const Picture>(Picture{format, std::string(data, data + size)}));
  });
}

void SceneBuilder::addPicture(const PictureKey& key, Matrix m, Point pixels, bool smooth,
                              float alpha) noexcept {
  keep([&] {
    constexpr float maxSlack = 2;  // units: so much of its bounds a plain picture may leave empty
    const float scale = std::min(m.a / pixels.x, m.d / pixels.y);
    const bool upright = std::abs(m.b) < 0.5f && std::abs(m.c) < 0.5f && scale > 0;
    PlacedPicture picture = {pictures_.find(key), m};
    picture.coarse = !smooth && std::hypot(m.a, m.b) > 2 * unitsPerPoint * pixels.x;
    picture.plain = upright && !picture.coarse && m.a - scale * pixels.x <= maxSlack &&
                    m.d - scale * pixels.y <= maxSlack;
    Node node = leaf(Kind::kPicture);
    node.alpha = alpha;
    node.bounds = mapped({0, 0, 1, 1}, m);
    node.content = std::move(picture);
    add(std::move(node));
  });
}

void SceneBuilder::addBitmap(const uint8_t* png, size_t size, Matrix m) noexcept {
  keep([&] {
    ++bitmaps_;
    Node node = leaf(Kind::kPicture);
    node.bounds = mapped({0, 0, 1, 1}, m);
    node.content = PlacedPicture{std::make_shared<const Picture>(Picture{
                                     qzsvggen::ImageFormat::kPng, std::string(png, png + size)}),
                                 m, true};
    add(std::move(node));
  });
}

}  // namespace qz::pdf
