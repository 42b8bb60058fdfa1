// What a page draws: leaves under clips, groups and what else encloses them, in painting order.
// It is made by the engine, and after that only read. All lengths are units, see geometry.h.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "geometry.h"

namespace qz::pdf {

struct Colour {
  uint8_t alpha = 255, red = 0, green = 0, blue = 0;
  friend bool operator==(const Colour&, const Colour&) = default;
};

enum class Cap : uint8_t { kButt, kRound, kSquare };
enum class Join : uint8_t { kMitre, kRound, kBevel };

struct Pen {
  float width = 0;
  Cap cap = Cap::kButt;
  Join join = Join::kMitre;
  float mitreLimit = 10;
  std::array<float, 12> dashes = {};  // on, off, on ...
  int dashCount = 0;                  // 0 for a solid line
  float dashPhase = 0;
  bool circular = true;
  Matrix ellipse;  // what makes a circle of that width the pen; it moves nothing
};

// A glyph as a font has it: in thousandths of its size, y up.
struct Shape {
  std::vector<POINT> points;
  std::vector<uint8_t> types;
  int advance = 0;
};

// The shape of a glyph at the origin, rounded to units.
struct Outline {
  std::vector<POINT> points;
  std::vector<uint8_t> types;
  Box bounds;
  float advance = 0;   // to the next glyph, along the line
  uint32_t shape = 0;  // index among the engine's shapes, in texts with a design
};

struct Glyph {
  uint32_t outline = 0;    // index among the engine's outlines; 0 has no shape
  char32_t character = 0;  // 0 when it is not known
  bool continued = false;  // a further character of the glyph before
  Point origin;
};

// Glyphs of one face and size.
struct Text {
  std::vector<Glyph> glyphs;
  Point along;  // the direction of the line, of length 1
  float size = 0;
  bool drawn = true;    // otherwise it is there to be found only
  uint32_t design = 0;  // texts of the same one have glyphs of the same form; 0 when a font that
                        // stands upright cannot have them
  bool serif = false, monospaced = false;
};

struct Picture {
  qzsvggen::ImageFormat format;
  std::string bytes;
};

struct PlacedPicture {
  std::shared_ptr<const Picture> picture;
  Matrix matrix;        // from a square of size 1, whose y runs down, too
  bool plain = false;   // upright and in its own proportions
  bool coarse = false;  // with pixels that are meant to be seen as squares
};

// A line, or two circles of which the first lies within the second.
struct GradientShape {
  bool radial = false;
  Matrix matrix;  // from the gradient's own coordinates
  Point from, to;
  float fromRadius = 0, toRadius = 0;
  bool goesBefore = false, goesBeyond = false;  // whether colours go on at the ends
};

struct Gradient {
  struct Stop {
    float offset;  // 0 to 1
    Colour colour;
  };
  GradientShape shape;
  std::vector<Stop> stops;
};

// A tile, drawn by the children where it lies first, that fills its node's bounds.
struct Tile {
  Box view;       // what of it is seen, in its own coordinates
  Point step;     // to the next one
  Matrix matrix;  // from its own coordinates
};

enum class Kind : uint8_t {
  kFill,     // a path
  kStroke,   // a path
  kText,     // a text, filled, or stroked when the pen has a width
  kPicture,  // a picture
  kShade,    // a gradient that fills the bounds
  kClip,     // children, clipped by a path
  kGroup,    // children, painted as one
  kMask,     // children, masked by the first of them, which is a group
  kTile,     // children, again and again
};

struct Node {
  Kind kind = Kind::kGroup;
  bool evenOdd = false;             // fills and clips
  bool luminous = false;            // masks: lightness counts, not alpha
  int32_t field = -1;               // index of the form field that it belongs to
  float alpha = 1;                  // groups, pictures and gradients
  const char* blendMode = nullptr;  // of a group, as CSS names it; null for the normal one
  Colour colour;                    // of a mask: where it draws nothing
  Box bounds;  // of what is drawn, clips that enclose it left aside; it may be infinite
  Pen pen;
  std::variant<std::monostate, Path, Text, PlacedPicture, std::shared_ptr<const Gradient>, Tile>
      content;
  std::vector<Node> children;
};

struct Link {
  Box bounds;
  bool internal = false;
  std::u16string target;
};

struct Target {
  Point position;
  std::u16string name;
};

struct Field {
  enum class Type : uint8_t { kText, kDate, kComboBox, kCheckBox, kSignature };
  Type type = Type::kText;
  uint8_t flags = 0, exFlags = 0;
  Box bounds;
  std::u16string name;
  int64_t days = 0;     // date fields
  std::u16string data;  // the description of a signature
};

struct Scene {
  int number = 0;  // of the page, from 1
  RECT page = {};
  Node root;
  std::vector<Link> links;
  std::vector<Target> targets;
  std::vector<Field> fields;
  int droppedLinks = 0;   // with schemes that are not passed on
  int untypedFields = 0;  // drawn, but no fields of the format
  int bitmaps = 0;        // parts that only the engine could draw
  int damages = 0;        // places where the page could not be read
};

}  // namespace qz::pdf
