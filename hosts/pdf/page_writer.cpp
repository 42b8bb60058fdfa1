#include "page_writer.h"

#include "shape_calls.h"
#include "svg_picture.h"

namespace qz::pdf {
namespace {

constexpr int32_t hairline = 10;  // units: a line of no width is shown so wide

bool same(const std::optional<RECT>& a, const std::optional<RECT>& b) {
  if (!a || !b) return a.has_value() == b.has_value();
  return a->left == b->left && a->top == b->top && a->right == b->right && a->bottom == b->bottom;
}

uint32_t strokeWidth(const Pen& pen) {
  return static_cast<uint32_t>(pen.width < 0.5f ? hairline : std::max(1, toUnits(pen.width)));
}

class Writer {
 public:
  Writer(const Scene& scene, const std::vector<Outline>& outlines, const TextFonts& fonts)
      : scene_(scene), outlines_(outlines), fonts_(fonts), page_(scene.page) {
    linkUsed_.resize(scene.links.size());
    fieldCut_.resize(scene.fields.size());
  }

  void draw(const Plan& plan, const std::vector<TextLine>& lines) {
    for (const Item& item : plan.items)
      if (item.field >= 0 && item.clip) fieldCut_[static_cast<size_t>(item.field)] = true;
    defineOutlines(plan);
    for (const Target& target : scene_.targets)
      page_.setDocumentTarget(toUnits(target.position), target.name);
    int32_t field = -1;
    for (const Item& item : plan.items) {
      if (item.field != field) {
        finishField(field, lines);
        field = item.field;
      }
      if (item.node != nullptr)
        drawLeaf(item);
      else
        drawSvg(item, plan.pictures[item.picture]);
    }
    finishField(field, lines);
    endText();
    for (int32_t each = 0; each < static_cast<int32_t>(scene_.fields.size()); ++each)
      if (!fieldDone(each)) enter({}, {each, -1}), finishField(each, lines);
    for (const TextLine& line : lines)
      if (line.field < 0) drawLine(line);
    coverEmptyLinks();
    enter({}, {});
    if (!fonts_.fonts.empty())
      page_.drawImage(qzsvggen::ImageFormat::kSvg, scene_.page, fontPicture(fonts_));
  }

  std::u16string close() { return page_.close(); }

 private:
  // The group that something belongs to: of a form field, of a link, or none.
  struct Group {
    int32_t field = -1, link = -1;
    friend bool operator==(const Group&, const Group&) = default;
  };

  // ---- Regions and groups

  // A group is clipped by the region that it begins in, so the region is entered before it. The
  // parts of a field stay together under one region.
  void enter(const std::optional<RECT>& clip, Group group) {
    const bool sameField = group.field >= 0 && group == group_;
    if (group == group_ && (sameField || same(clip, clip_))) return;
    endText();
    if (group_ != Group{}) page_.endLink();
    if (!same(clip, clip_)) select(clip);
    clip_ = clip;
    group_ = group;
    if (group.field >= 0) beginField(group.field);
    if (group.link >= 0) beginLink(static_cast<size_t>(group.link));
  }

  void select(const std::optional<RECT>& clip) {
    if (!clip) return page_.endClippingRegion();
    for (uint32_t i = 0; i < regions_.size(); ++i)
      if (same(regions_[i], clip)) {
        page_.setCurrentClippingRegion(i);
        return;
      }
    regions_.push_back(*clip);
    page_.beginClippingRegion(*clip);
  }

  void beginLink(size_t index) {
    const Link& link = scene_.links[index];
    linkUsed_[index] = true;
    page_.beginLink(link.internal ? qzsvggen::LinkType::kInternal : qzsvggen::LinkType::kExternal,
                    link.target);
  }

  void beginField(int32_t index) {
    using Type = qzsvggen::FieldType;
    const Field& field = scene_.fields[static_cast<size_t>(index)];
    const RECT bounds = field.bounds.rounded();
    std::string data(reinterpret_cast<const char*>(field.data.data()), 2 * field.data.size());
    Type type = Type::kText;
    switch (field.type) {
      case Field::Type::kSignature:
        return page_.beginSignatureField(bounds, field.name, field.data);
      case Field::Type::kDate:
        type = Type::kDate;
        for (int byte = 7; byte >= 0; --byte)
          data.insert(data.begin(), static_cast<char>(field.days >> 8 * byte));
        break;
      case Field::Type::kComboBox:
        type = Type::kComboBox;
        break;
      case Field::Type::kCheckBox:
        type = Type::kCheckBox;
        break;
      case Field::Type::kText:
        break;
    }
    page_.beginFormField(type, bounds, field.name, data, field.flags, field.exFlags);
  }

  bool fieldDone(int32_t field) const {
    return std::find(fieldsDone_.begin(), fieldsDone_.end(), field) != fieldsDone_.end();
  }

  // Adds the text of a field behind its drawing.
  void finishField(int32_t field, const std::vector<TextLine>& lines) {
    if (field < 0) return;
    fieldsDone_.push_back(field);
    for (const TextLine& line : lines)
      if (line.field == field) drawLine(line);
    enter({}, {});
  }

  // ---- Leaves

  static Group groupOf(const Item& item) { return {item.field, item.link}; }

  // A field that is cut somewhere is cut as a whole.
  std::optional<RECT> clipOf(const Item& item) const {
    if (item.field < 0) return item.clip;
    const size_t field = static_cast<size_t>(item.field);
    return fieldCut_[field] ? std::optional(scene_.fields[field].bounds.rounded()) : std::nullopt;
  }

  void drawLeaf(const Item& item) {
    const Node& node = *item.node;
    Colour colour = node.colour;
    colour.alpha = static_cast<uint8_t>(std::lround(static_cast<float>(colour.alpha) * item.alpha));
    if (node.kind == Kind::kText) return drawText(item, colour);
    endText();
    enter(clipOf(item), groupOf(item));
    if (node.kind == Kind::kPicture) {
      const Picture& picture = *std::get<PlacedPicture>(node.content).picture;
      page_.drawImage(picture.format, node.bounds.rounded(), picture.bytes);
      return;
    }
    paint(node, colour);
    const Path& path = std::get<Path>(node.content);
    if (node.kind == Kind::kFill)
      drawFill(page_, path);
    else
      drawStroke(page_, path);
  }

  void drawSvg(const Item& item, const std::vector<PicturePart>& parts) {
    endText();
    enter({}, groupOf(item));
    page_.drawImage(qzsvggen::ImageFormat::kSvg, scene_.page,
                    drawSvgPicture(parts, scene_.page, outlines_, item.picture));
  }

  void paint(const Node& node, Colour c) {
    if (node.pen.width > 0 || node.kind == Kind::kStroke) {
      page_.setFill(0, 0, 0, 0);
      page_.setStroke(c.alpha, c.red, c.green, c.blue, strokeWidth(node.pen));
    } else {
      page_.clearStroke();
      page_.setFill(c.alpha, c.red, c.green, c.blue);
    }
  }

  // ---- Texts

  // Each outline of the page, unpainted and at the origin, for all blocks to refer to.
  void defineOutlines(const Plan& plan) {
    std::vector<bool> known(outlines_.size());
    page_.setFill(0, 0, 0, 0);
    page_.clearStroke();
    bool any = false;
    for (const Item& item : plan.items) {
      const Text* text = item.node != nullptr ? std::get_if<Text>(&item.node->content) : nullptr;
      if (text == nullptr || !text->drawn) continue;
      for (size_t i = 0; i < text->glyphs.size(); ++i) {
        const Glyph& glyph = text->glyphs[i];
        if (known[glyph.outline] || outlines_[glyph.outline].points.empty()) continue;
        if (fonts_.useOf(*text, i).font != 0) continue;
        known[glyph.outline] = true;
        if (!any) page_.beginCharacterBlock();
        any = true;
        drawOutline(glyph.outline, {0, 0});
      }
    }
    page_.endCharacterBlock();
    first_.assign(outlines_.size(), {});
  }

  void drawOutline(uint32_t index, POINT at) {
    page_.beginCharacter(at);
    page_.drawPath(outlines_[index].points, outlines_[index].types);
  }

  void drawText(const Item& item, Colour colour) {
    const Text& text = std::get<Text>(item.node->content);
    if (!text.drawn) return;
    for (size_t i = 0; i < text.glyphs.size(); ++i) {
      const Glyph& glyph = text.glyphs[i];
      const FontUse use = fonts_.useOf(text, i);
      if (use.font == 0 && outlines_[glyph.outline].points.empty()) continue;
      enter(clipOf(item), {item.field, item.field < 0 ? linkOf(text, glyph) : -1});
      if (use.font != 0) {
        addToRun(text, glyph, use, colour);
      } else {
        beginBlock(*item.node, colour);
        putGlyph(glyph.outline, toUnits(glyph.origin));
      }
    }
  }

  int32_t linkOf(const Text& text, const Glyph& glyph) const {
    const Outline& outline = outlines_[glyph.outline];
    return linkAt(scene_.links, outline.bounds.empty()
                                    ? glyph.origin - Point{-outline.advance / 2, text.size / 4}
                                    : outline.bounds.moved(glyph.origin).centre());
  }

  void beginBlock(const Node& node, Colour colour) {
    const uint32_t width = node.pen.width > 0 ? strokeWidth(node.pen) : 0;
    if (blockOpen_ && blockColour_ == colour && blockWidth_ == width) return;
    endText();
    paint(node, colour);
    page_.beginCharacterBlock();
    blockOpen_ = true;
    blockColour_ = colour;
    blockWidth_ = width;
    ++block_;
    blockLength_ = 0;
  }

  // Ends a block, or draws the run that has been collected.
  void endText() {
    if (blockOpen_) page_.endCharacterBlock();
    blockOpen_ = false;
    const bool any = run_.line.text.find_first_not_of(u' ') != std::u16string::npos;
    if (any) drawRun();
    run_.line.text.clear();
    run_.line.positions.clear();
  }

  // ---- Runs in fonts of the page

  void addToRun(const Text& text, const Glyph& glyph, FontUse use, Colour colour) {
    const POINT at = toUnits(glyph.origin);
    const int32_t size = std::max(1, toUnits(text.size));
    const float gap = (glyph.origin.x - run_.end) / text.size;
    TextLine& line = run_.line;
    const bool follows =
        !line.text.empty() && line.origin.y == at.y && gap > backGap && gap < endGap;
    if (follows && gap > spaceGap && line.text.back() != ' ' && use.character != ' ')
      append(u' ', toUnits(run_.end));
    if (!follows || line.size != size || run_.font != use.font || !(run_.colour == colour)) {
      endText();
      line.origin = at;
      line.size = size;
      run_.font = use.font;
      run_.colour = colour;
    }
    append(use.character, at.x);
    run_.end = glyph.origin.x + outlines_[glyph.outline].advance;
  }

  void append(char16_t character, int32_t x) {
    run_.line.text += character;
    run_.line.positions.push_back(x);
  }

  void drawRun() {
    const Colour& c = run_.colour;
    page_.clearStroke();
    page_.setFill(c.alpha, c.red, c.green, c.blue);
    const std::string name = fonts_.family(run_.font);
    page_.setFont(std::u16string(name.begin(), name.end()), run_.line.size);
    drawPlaced(run_.line);
  }

  // ---- Glyphs and lines

  // Within a block a reference is cheaper than the outline, and means the same.
  void putGlyph(uint32_t outline, POINT at) {
    FirstUse& first = first_[outline];
    if (first.block == block_) {
      page_.setCharacterReference(first.index, at);
    } else {
      drawOutline(outline, at);
      first = {block_, blockLength_};
    }
    ++blockLength_;
  }

  // A line to be found and selected: it is hardly painted.
  void drawLine(const TextLine& line) {
    enter({}, {line.field, line.link});
    page_.clearStroke();
    page_.setFill(1, 0, 0, 0);
    page_.setFont(line.monospaced ? u"monospace"
                  : line.serif    ? u"serif"
                                  : u"sans-serif",
                  line.size);
    if (line.positions.empty())
      page_.drawText(line.text, line.origin);
    else
      drawPlaced(line);
  }

  void drawPlaced(const TextLine& line) {
    // Browsers take one position for a surrogate pair: there the run ends.
    POINT origin = line.origin;
    for (size_t first = 0, i = 0; i < line.text.size(); ++i) {
      const bool pairEnds = (line.text[i] & 0xFC00) == 0xDC00;
      if (i + 1 < line.text.size() && !pairEnds) continue;
      std::vector<int32_t> advances;
      for (size_t k = first; k <= i; ++k)
        advances.push_back(k < i ? line.positions[k + 1] - line.positions[k] : 0);
      origin.x = line.positions[first];
      page_.drawText(std::u16string_view(line.text).substr(first, i + 1 - first), origin, advances);
      first = i + 1;
    }
  }

  void coverEmptyLinks() {
    for (size_t i = 0; i < scene_.links.size(); ++i) {
      if (linkUsed_[i]) continue;
      enter({}, {-1, static_cast<int32_t>(i)});
      page_.clearStroke();
      page_.setFill(1, 255, 255, 255);
      page_.drawRectangle(scene_.links[i].bounds.rounded());
    }
  }

  struct FirstUse {
    uint32_t block = 0, index = 0;
  };

  const Scene& scene_;
  const std::vector<Outline>& outlines_;
  const TextFonts& fonts_;
  qzsvggen::Page page_;
  std::vector<bool> linkUsed_, fieldCut_;
  std::vector<int32_t> fieldsDone_;

  Group group_;
  std::optional<RECT> clip_;
  std::vector<RECT> regions_;

  bool blockOpen_ = false;
  Colour blockColour_;
  uint32_t blockWidth_ = 0, block_ = 0, blockLength_ = 0;
  std::vector<FirstUse> first_;  // of each outline in the open block

  struct Run {
    TextLine line;
    uint16_t font = 0;
    Colour colour;
    float end = 0;  // x behind its last glyph
  };
  Run run_;
};

}  // namespace

std::u16string writePage(const Scene& scene, const Plan& plan, const std::vector<Outline>& outlines,
                         const std::vector<Shape>& shapes, TextMode mode) {
  TextFonts fonts;
  if (mode == TextMode::kFonts) fonts = makeTextFonts(scene.number, plan, outlines, shapes);
  std::vector<TextLine> lines;
  if (mode != TextMode::kOutlines) lines = makeTextLines(scene, outlines, fonts);
  Writer writer(scene, outlines, fonts);
  writer.draw(plan, lines);
  return writer.close();
}

}  // namespace qz::pdf
