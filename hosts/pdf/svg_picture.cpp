#include "svg_picture.h"

#include <map>
#include <set>

#include "shapes.h"
#include "svg_markup.h"

namespace qz::pdf {
namespace {

constexpr int maxOverlaps = 8;  // so many tiles before it reach into a tile, in each direction

std::string opacity(float alpha) {
  return alpha < 1 ? " opacity=\"" + number(alpha) + '"' : std::string();
}

std::string area(const Box& box) {
  const RECT r = box.rounded();
  return " x=\"" + number(r.left) + "\" y=\"" + number(r.top) + "\" width=\"" +
         number(r.right - r.left) + "\" height=\"" + number(r.bottom - r.top) + '"';
}

class PictureWriter {
 public:
  PictureWriter(const std::vector<Outline>& outlines, size_t picture)
      : outlines_(outlines), prefix_('v' + std::to_string(picture) + '_') {}

  void add(const PicturePart& part) {
    const std::string group = opacity(part.alpha);
    if (!group.empty()) text_ += "<g" + group + '>';
    if (fills(*part.node))
      addFilled(*part.node, boxPath(common(part.node->bounds, part.clip)), false);
    else
      addCut(*part.node, part.clip);
    if (!group.empty()) text_ += "</g>";
  }

  std::string finish(const RECT& page) const {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + number(page.right) + ' ' +
           number(page.bottom) + "\">" + (defs_.empty() ? "" : "<defs>" + defs_ + "</defs>") +
           text_ + "</svg>";
  }

 private:
  // What is the same is defined once. Returns its id.
  const std::string& define(const std::string& element, const std::string& rest) {
    const auto [place, isNew] = ids_.try_emplace('<' + element + rest);
    if (isNew) {
      place->second = prefix_ + std::to_string(ids_.size());
      defs_ += '<' + element + " id=\"" + place->second + '"' + rest;
    }
    return place->second;
  }

  // What the nodes draw, apart from what has been drawn.
  template <class Range>
  std::string drawn(const Range& nodes) {
    std::string before = std::exchange(text_, {});
    for (const Node& node : nodes) add(node);
    return std::exchange(text_, std::move(before));
  }

  void openClip(const std::string& path, bool evenOdd) {
    const std::string& id =
        define("clipPath", std::string("><path") + (evenOdd ? " clip-rule=\"evenodd\"" : "") +
                               " d=\"" + path + "\"/></clipPath>");
    text_ += "<g clip-path=\"url(#" + id + ")\">";
  }

  void addCut(const Node& node, const Box& clip) {
    const bool cut = !clip.grown(1).holds(node.bounds);
    if (cut) openClip(boxPath(clip), false);
    add(node);
    if (cut) text_ += "</g>";
  }

  void add(const Node& node) {
    switch (node.kind) {
      case Kind::kFill:
      case Kind::kStroke:
        return addPath(node);
      case Kind::kText:
        return addText(node);
      case Kind::kPicture:
        return addPicture(node);
      case Kind::kShade:
      case Kind::kTile:
        return addFilled(node, boxPath(node.bounds), false);
      case Kind::kClip:
        return addClip(node);
      case Kind::kMask:
        return addMask(node);
      case Kind::kGroup:
        return addGroup(node);
    }
  }

  void addPath(const Node& node) {
    if (node.colour.alpha == 0) return;
    const Path& path = std::get<Path>(node.content);
    if (node.kind == Kind::kStroke && !node.pen.circular) return addEllipticStroke(node, path);
    text_ += "<path" + (node.kind == Kind::kStroke ? strokeAttributes(node.pen, node.colour)
                                                   : paintAttributes("fill", node.colour));
    if (node.kind == Kind::kFill && node.evenOdd) text_ += " fill-rule=\"evenodd\"";
    text_ += " d=\"" + pathData(path) + "\"/>";
  }

  // The pen is a circle in other coordinates.
  void addEllipticStroke(const Node& node, Path path) {
    const Matrix back = node.pen.ellipse.inverse();
    for (Point& p : path.points) p = back.map(p);
    text_ += "<path transform=\"" + matrixText(node.pen.ellipse) + '"' +
             strokeAttributes(node.pen, node.colour) + " d=\"" + pathData(path) + "\"/>";
  }

  void addText(const Node& node) {
    const Text& text = std::get<Text>(node.content);
    if (!text.drawn || node.colour.alpha == 0) return;
    text_ += "<g" +
             (node.pen.width > 0 ? strokeAttributes(node.pen, node.colour)
                                 : paintAttributes("fill", node.colour)) +
             '>';
    for (const Glyph& glyph : text.glyphs) {
      const Outline& outline = outlines_[glyph.outline];
      if (outline.points.empty()) continue;
      const std::string id = prefix_ + 'g' + std::to_string(glyph.outline);
      if (defined_.insert(glyph.outline).second)
        defs_ += "<path id=\"" + id + "\" d=\"" + pathData(outline) + "\"/>";
      const POINT at = toUnits(glyph.origin);
      text_ += "<use href=\"#" + id + "\" x=\"" + number(at.x) + "\" y=\"" + number(at.y) + "\"/>";
    }
    text_ += "</g>";
  }

  // A picture's bytes are stored once, as a picture of size 1 by 1.
  void addPicture(const Node& node) {
    const PlacedPicture& placed = std::get<PlacedPicture>(node.content);
    const Picture& picture = *placed.picture;
    const auto [place, isNew] =
        pictures_.emplace(&picture, prefix_ + 'i' + std::to_string(pictures_.size()));
    if (isNew)
      defs_ += "<image id=\"" + place->second +
               "\" width=\"1\" height=\"1\" preserveAspectRatio=\"none\" href=\"data:image/" +
               (picture.format == qzsvggen::ImageFormat::kJpeg ? "jpeg" : "png") + ";base64," +
               base64(picture.bytes) + "\"/>";
    text_ += "<use href=\"#" + place->second + '"' + opacity(node.alpha) +
             (placed.coarse ? " style=\"image-rendering:pixelated\"" : "") + " transform=\"" +
             matrixText(placed.matrix) + "\"/>";
  }

  // ---- Containers

  void addGroup(const Node& node) {
    std::string attributes = opacity(node.alpha);
    if (node.blendMode != nullptr)
      attributes += std::string(" style=\"mix-blend-mode:") + node.blendMode + '"';
    if (!attributes.empty()) text_ += "<g" + attributes + '>';
    for (const Node& child : node.children) add(child);
    if (!attributes.empty()) text_ += "</g>";
  }

  void addClip(const Node& node) {
    const Path& path = std::get<Path>(node.content);
    if (node.children.size() == 1 && fills(node.children.front()))
      return addFilledClip(node.children.front(), path, node.evenOdd);
    const bool cuts = !covers(path, node.bounds);
    if (cuts) openClip(pathData(path), node.evenOdd);
    for (const Node& child : node.children) add(child);
    if (cuts) text_ += "</g>";
  }

  void addMask(const Node& node) {
    std::string mask = drawn(std::vector{std::cref(node.children.front())});
    const Colour& backdrop = node.colour;
    if (node.luminous && (backdrop.red | backdrop.green | backdrop.blue) != 0)
      mask = "<path" + paintAttributes("fill", backdrop) + " d=\"" + boxPath(node.bounds) + "\"/>" +
             mask;
    const std::string& id = define(
        "mask", " maskUnits=\"userSpaceOnUse\"" + area(node.bounds) +
                    (node.luminous ? ">" : " style=\"mask-type:alpha\">") + mask + "</mask>");
    text_ += "<g mask=\"url(#" + id + ")\">";
    for (size_t i = 1; i < node.children.size(); ++i) add(node.children[i]);
    text_ += "</g>";
  }

  // ---- Shades and tiles: they fill what there is

  static bool fills(const Node& node) {
    return node.kind == Kind::kShade || node.kind == Kind::kTile;
  }

  void addFilledClip(const Node& node, const Path& path, bool evenOdd) {
    const std::optional<Box> box = asRectangle(path);
    if (box)
      addFilled(node, boxPath(common(*box, node.bounds)), false);
    else if (node.bounds.grown(1).holds(boundsOf(path.points)))
      addFilled(node, pathData(path), evenOdd);
    else
      openClip(pathData(path), evenOdd), add(node), text_ += "</g>";
  }

  void addFilled(const Node& node, const std::string& path, bool evenOdd) {
    const std::string id =
        node.kind == Kind::kShade
            ? defineGradient(*std::get<std::shared_ptr<const Gradient>>(node.content))
            : defineTile(node);
    if (id.empty()) return;
    text_ += "<path fill=\"url(#" + id + ")\"" + opacity(node.alpha) +
             (evenOdd ? " fill-rule=\"evenodd\"" : "") + " d=\"" + path + "\"/>";
  }

  std::string defineGradient(const Gradient& gradient) {
    const GradientShape& shape = gradient.shape;
    const auto attribute = [](const char* name, float value) {
      return ' ' + std::string(name) + "=\"" + number(value) + '"';
    };
    std::string text =
        " gradientUnits=\"userSpaceOnUse\" gradientTransform=\"" + matrixText(shape.matrix) + '"';
    if (shape.radial)
      text += attribute("fx", shape.from.x) + attribute("fy", shape.from.y) +
              attribute("fr", shape.fromRadius) + attribute("cx", shape.to.x) +
              attribute("cy", shape.to.y) + attribute("r", shape.toRadius) + '>';
    else
      text += attribute("x1", shape.from.x) + attribute("y1", shape.from.y) +
              attribute("x2", shape.to.x) + attribute("y2", shape.to.y) + '>';
    for (const Gradient::Stop& stop : gradient.stops) {
      text += "<stop" + attribute("offset", stop.offset);
      if (stop.colour.alpha == 0)
        text += " stop-opacity=\"0\"";
      else
        text += paintAttributes("stop-color", stop.colour);
      text += "/>";
    }
    const std::string element = shape.radial ? "radialGradient" : "linearGradient";
    return define(element, text + "</" + element + '>');
  }

  // A tile larger than its step reaches into those that follow, so it is drawn for each of them.
  std::string defineTile(const Node& node) {
    const Tile& tile = std::get<Tile>(node.content);
    const float xStep = std::abs(tile.step.x), yStep = std::abs(tile.step.y);
    if (!(xStep > 0 && yStep > 0) || tile.matrix.determinant() == 0) return {};
    const auto before = [](float size, float step) {
      return std::min(maxOverlaps, static_cast<int>(std::ceil(size / step - 0.01f)) - 1);
    };
    const int columns = before(tile.view.width(), xStep), rows = before(tile.view.height(), yStep);
    const std::string content = tileContent(node, tile);
    std::string copies = content;
    if (columns > 0 || rows > 0) {
      const std::string& id = define("g", '>' + content + "</g>");
      copies.clear();
      for (int row = -rows; row <= 0; ++row)
        for (int column = -columns; column <= 0; ++column)
          copies += "<use href=\"#" + id + "\" x=\"" + number(static_cast<float>(column) * xStep) +
                    "\" y=\"" + number(static_cast<float>(row) * yStep) + "\"/>";
    }
    return define("pattern", " patternUnits=\"userSpaceOnUse\" x=\"" + number(tile.view.left) +
                                 "\" y=\"" + number(tile.view.top) + "\" width=\"" + number(xStep) +
                                 "\" height=\"" + number(yStep) + "\" patternTransform=\"" +
                                 matrixText(tile.matrix) + "\">" + copies + "</pattern>");
  }

  // In the tile's own coordinates.
  std::string tileContent(const Node& node, const Tile& tile) {
    Box content;
    for (const Node& child : node.children) content.include(child.bounds);
    std::string text = drawn(node.children);
    if (!mapped(tile.view, tile.matrix).grown(1).holds(content)) {
      const std::string& id =
          define("clipPath", "><rect x=\"" + number(tile.view.left) + "\" y=\"" +
                                 number(tile.view.top) + "\" width=\"" + number(tile.view.width()) +
                                 "\" height=\"" + number(tile.view.height()) + "\"/></clipPath>");
      return "<g clip-path=\"url(#" + id + ")\"><g transform=\"" +
             matrixText(tile.matrix.inverse()) + "\">" + text + "</g></g>";
    }
    return "<g transform=\"" + matrixText(tile.matrix.inverse()) + "\">" + text + "</g>";
  }

  const std::vector<Outline>& outlines_;
  std::string prefix_, defs_, text_;
  std::map<std::string, std::string> ids_;  // of definitions
  std::set<uint32_t> defined_;              // outlines
  std::map<const Picture*, std::string> pictures_;
};

}  // namespace

std::string drawSvgPicture(const std::vector<PicturePart>& parts, const RECT& page,
                           const std::vector<Outline>& outlines, size_t number) {
  PictureWriter writer(outlines, number);
  for (const PicturePart& part : parts) writer.add(part);
  return writer.finish(page);
}

}  // namespace qz::pdf
