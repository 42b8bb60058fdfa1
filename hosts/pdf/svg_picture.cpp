#include "svg_picture.h"

#include <cstdio>
#include <map>
#include <set>

#include "shapes.h"

namespace qz::pdf {
namespace {

constexpr float maxSkew = 0.1f * unitsPerPoint;

std::string decimal(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.5g", static_cast<double>(value));
  return text;
}

std::string number(int32_t value) { return std::to_string(value); }

POINT rounded(Point p) { return toUnits(p); }
POINT rounded(POINT p) { return p; }

template <class Points>
std::string pathData(const Points& points, const std::vector<uint8_t>& types) {
  std::string data;
  POINT at = {0, 0};
  const auto add = [&](POINT p) {
    const int32_t x = p.x - at.x, y = p.y - at.y;
    if (x >= 0 && data.back() != 'm' && data.back() != 'l' && data.back() != 'c' &&
        data.back() != 'M')
      data += ' ';
    data += number(x);
    if (y >= 0) data += ' ';
    data += number(y);
  };
  POINT start = at;
  int last = 0;
  for (size_t i = 0; i < points.size(); ++i) {
    const int type = types[i] == PT_MOVETO ? PT_MOVETO : types[i] & ~PT_CLOSEFIGURE;
    const size_t count = type == PT_BEZIERTO ? 3 : 1;
    if (type != last || type == PT_MOVETO)
      data += type == PT_MOVETO ? (i == 0 ? 'M' : 'm') : type == PT_LINETO ? 'l' : 'c';
    POINT end = at;
    for (size_t k = 0; k < count && i + k < points.size(); ++k) add(end = rounded(points[i + k]));
    i += count - 1;
    at = end;
    last = type;
    if (type == PT_MOVETO) start = at;
    if (type != PT_MOVETO && i < types.size() && (types[i] & PT_CLOSEFIGURE) != 0) {
      data += 'z';
      at = start;
      last = 0;
    }
  }
  return data;
}

std::string paint(const char* what, Colour c) {
  char text[80];
  std::snprintf(text, sizeof text, " %s=\"#%02x%02x%02x\"", what, c.red, c.green, c.blue);
  std::string result = text;
  if (c.alpha < 255)
    result +=
        ' ' + std::string(what) + "-opacity=\"" + decimal(static_cast<float>(c.alpha) / 255) + '"';
  return result;
}

std::string strokeAttributes(const Pen& pen, Colour colour) {
  std::string text = " fill=\"none\"" + paint("stroke", colour) + " stroke-width=\"" +
                     (pen.width < 0.5f ? "10" : decimal(pen.width)) + '"';
  if (pen.cap != Cap::kButt)
    text += pen.cap == Cap::kRound ? " stroke-linecap=\"round\"" : " stroke-linecap=\"square\"";
  if (pen.join != Join::kMitre)
    text += pen.join == Join::kRound ? " stroke-linejoin=\"round\"" : " stroke-linejoin=\"bevel\"";
  else if (pen.mitreLimit != 4)
    text += " stroke-miterlimit=\"" + decimal(std::max(1.0f, pen.mitreLimit)) + '"';
  for (int i = 0; i < pen.dashCount; ++i)
    text += (i == 0 ? " stroke-dasharray=\"" : " ") + decimal(pen.dashes[static_cast<size_t>(i)]);
  if (pen.dashCount > 0) text += '"';
  if (pen.dashCount > 0 && pen.dashPhase != 0)
    text += " stroke-dashoffset=\"" + decimal(pen.dashPhase) + '"';
  return text;
}

std::string base64(const std::string& bytes) {
  constexpr const char* letters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve(bytes.size() / 3 * 4 + 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t group = 0;
    for (size_t k = 0; k < 3; ++k)
      group = group << 8 | (i + k < bytes.size() ? static_cast<uint8_t>(bytes[i + k]) : 0u);
    for (size_t k = 0; k < 4; ++k)
      text += i + k <= bytes.size() ? letters[group >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

class PictureWriter {
 public:
  PictureWriter(const std::vector<Outline>& outlines, size_t picture)
      : outlines_(outlines), prefix_('v' + std::to_string(picture) + '_') {}

  void add(const PicturePart& part) {
    const bool cut = !part.clip.grown(1).holds(part.node->bounds);
    if (cut) openClip(boxPath(part.clip), false);
    if (part.alpha < 1) text_ += "<g opacity=\"" + decimal(part.alpha) + "\">";
    add(*part.node);
    if (part.alpha < 1) text_ += "</g>";
    if (cut) text_ += "</g>";
  }

  std::string finish(const RECT& page) const {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + number(page.right) + ' ' +
           number(page.bottom) + "\">" + (defs_.empty() ? "" : "<defs>" + defs_ + "</defs>") +
           text_ + "</svg>";
  }

 private:
  static std::string boxPath(const Box& box) {
    const RECT r = box.rounded();
    return 'M' + number(r.left) + ' ' + number(r.top) + 'H' + number(r.right) + 'V' +
           number(r.bottom) + 'H' + number(r.left) + 'z';
  }

  void openClip(const std::string& path, bool evenOdd) {
    const std::string id = prefix_ + std::to_string(++ids_);
    defs_ += "<clipPath id=\"" + id + "\"><path" + (evenOdd ? " clip-rule=\"evenodd\"" : "") +
             " d=\"" + path + "\"/></clipPath>";
    text_ += "<g clip-path=\"url(#" + id + ")\">";
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
      case Kind::kEngine:
        return;
      case Kind::kClip: {
        const Path& path = std::get<Path>(node.content);
        const bool cuts = !covers(path, node.bounds);
        if (cuts) openClip(pathData(path.points, path.types), node.evenOdd);
        for (const Node& child : node.children) add(child);
        if (cuts) text_ += "</g>";
        return;
      }
      case Kind::kGroup: {
        const bool plain = node.alpha >= 1 && node.blendMode == nullptr;
        if (!plain) {
          text_ += "<g";
          if (node.alpha < 1) text_ += " opacity=\"" + decimal(node.alpha) + '"';
          if (node.blendMode != nullptr)
            text_ += std::string(" style=\"mix-blend-mode:") + node.blendMode + '"';
          text_ += '>';
        }
        for (const Node& child : node.children) add(child);
        if (!plain) text_ += "</g>";
      }
    }
  }

  void addPath(const Node& node) {
    if (node.colour.alpha == 0) return;
    const Path& path = std::get<Path>(node.content);
    text_ += "<path" + (node.kind == Kind::kStroke ? strokeAttributes(node.pen, node.colour)
                                                   : paint("fill", node.colour));
    if (node.kind == Kind::kFill && node.evenOdd) text_ += " fill-rule=\"evenodd\"";
    text_ += " d=\"" + pathData(path.points, path.types) + "\"/>";
  }

  void addText(const Node& node) {
    const Text& text = std::get<Text>(node.content);
    if (!text.drawn || node.colour.alpha == 0) return;
    text_ += "<g" +
             (node.pen.width > 0 ? strokeAttributes(node.pen, node.colour)
                                 : paint("fill", node.colour)) +
             '>';
    for (const Glyph& glyph : text.glyphs) {
      const Outline& outline = outlines_[glyph.outline];
      if (outline.points.empty()) continue;
      const std::string id = prefix_ + 'g' + std::to_string(glyph.outline);
      if (defined_.insert(glyph.outline).second)
        defs_ += "<path id=\"" + id + "\" d=\"" + pathData(outline.points, outline.types) + "\"/>";
      const POINT at = toUnits(glyph.origin);
      text_ += "<use href=\"#" + id + "\" x=\"" + number(at.x) + "\" y=\"" + number(at.y) + "\"/>";
    }
    text_ += "</g>";
  }

  // A picture's bytes are stored once, as a picture of size 1 by 1.
  void addPicture(const Node& node) {
    const auto& picture = std::get<std::shared_ptr<const Picture>>(node.content);
    const auto [place, isNew] =
        pictures_.emplace(picture.get(), prefix_ + 'i' + std::to_string(pictures_.size()));
    if (isNew)
      defs_ += "<image id=\"" + place->second +
               "\" width=\"1\" height=\"1\" preserveAspectRatio=\"none\" href=\"data:image/" +
               (picture->format == qzsvggen::ImageFormat::kJpeg ? "jpeg" : "png") + ";base64," +
               base64(picture->bytes) + "\"/>";
    const RECT r = node.bounds.rounded();
    text_ += "<use href=\"#" + place->second + "\" transform=\"translate(" + number(r.left) + ' ' +
             number(r.top) + ") scale(" + number(r.right - r.left) + ' ' +
             number(r.bottom - r.top) + ")\"/>";
  }

  const std::vector<Outline>& outlines_;
  std::string prefix_, defs_, text_;
  std::set<uint32_t> defined_;
  std::map<const Picture*, std::string> pictures_;
  int ids_ = 0;
};

}  // namespace

bool isPicturable(const Node& node) {
  if (node.kind == Kind::kEngine) return false;
  const bool stroked = node.kind == Kind::kStroke || node.kind == Kind::kText;
  if (stroked &&
      (node.pen.skew > maxSkew || node.pen.dashCount > static_cast<int>(node.pen.dashes.size())))
    return false;
  return std::all_of(node.children.begin(), node.children.end(), isPicturable);
}

std::string drawSvgPicture(const std::vector<PicturePart>& parts, const RECT& page,
                           const std::vector<Outline>& outlines, size_t number) {
  PictureWriter writer(outlines, number);
  for (const PicturePart& part : parts) writer.add(part);
  return writer.finish(page);
}

}  // namespace qz::pdf
