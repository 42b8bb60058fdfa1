// What is in force while a page is drawn, and the elements that its calls make.
//
// A consumer of calls. It follows the public contract: what is current, how regions are numbered,
// which call leaves an element in the document and where.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "recording.h"
#include "svg_picture.h"

namespace qz::tools {

constexpr int kNone = -1;

struct Colour {
  uint8_t alpha = 0, red = 0, green = 0, blue = 0;
};

struct Paint {
  Colour fill{255, 0, 0, 0};
  Colour stroke;
  uint32_t width = 0;
  bool inverted = false;

  bool fills() const { return fill.alpha > 0; }
  bool strokes() const { return stroke.alpha > 0 && width > 0; }
};

struct Font {
  std::u16string family;
  int32_t size = 0;
  bool italic = false, bold = false;
  int line = 0;
};

struct Region {
  std::vector<RECT> kept, cut;
  int line = 0;
  bool used = false;
};

// The region with a rectangle cut out of it; nothing when the rectangle is cut out already, which
// ends clipping.
std::optional<Region> cutOut(Region region, const RECT& rectangle);

struct Group {
  std::string_view begin;  // the function
  int line = 0;
  int region = kNone;
};

// An element of the document: made by the call of a line.
struct Element {
  std::string tag;
  int line = 0;
  int region = kNone;
  std::list<Element> children;  // which stay where they are when others come
};

// An element where it stands in the document, as "/svg/g[2]/text[5]".
struct PlacedElement {
  std::string path;
  int line = 0;
};

class PageState {
 public:
  PageState(const RECT& page, int line) : page_(page), pageLine_(line) {}

  // The line of the calls that follow.
  void setLine(int line) { line_ = line; }
  int line() const { return line_; }

  const RECT& page() const { return page_; }
  const Paint& paint() const { return paint_; }
  bool inverting() const { return inverting_; }
  const Font* font() const { return font_ ? &*font_ : nullptr; }
  int region() const { return region_; }
  const std::vector<Region>& regions() const { return regions_; }
  const Group* group() const { return group_ ? &*group_ : nullptr; }
  // Children of the open group.
  std::size_t groupSize() const { return groupElement_->children.size(); }
  bool isClosed() const { return isClosed_; }

  struct Character {
    POINT position;
    int line = 0;
    std::size_t shapes = 0;
    bool showsAnother = false;  // a reference to one with an outline
  };
  struct Block {
    int line = 0;
    std::vector<Character> characters;
  };
  const Block* block() const { return block_ ? &*block_ : nullptr; }

  // The SVG picture of a call of SVG_DrawImage.
  const SvgPicture& svgPicture(const RECT& bounds, const uint8_t* data, int32_t length) {
    return pictures_.of(bounds, data, length);
  }

  // All elements of the document, in its order; the insides of SVG pictures are left out.
  std::vector<PlacedElement> elements() const;

  // ---- The calls ----
  template <auto function, class... P>
  void operator()(Function<function> which, P... parameters) {
    if (!isClosed_) take(which, parameters...);
  }

 private:
  template <auto function, class... P>
  void take(Function<function>, P...) {}  // those without an effect
  void take(Function<SVG_Close>);
  void take(Function<SVG_SetFill>, uint8_t alpha, uint8_t red, uint8_t green, uint8_t blue);
  void take(Function<SVG_SetStroke>, uint8_t alpha, uint8_t red, uint8_t green, uint8_t blue,
            uint32_t width);
  void take(Function<SVG_ClearStroke>);
  void take(Function<SVG_BeginInvertPainting>) { inverting_ = true; }
  void take(Function<SVG_EndInvertPainting>) { inverting_ = false; }
  void take(Function<SVG_InvertPath>, const POINT*, const uint8_t*, uint32_t);
  void take(Function<SVG_InvertRectangle>, const RECT*) { invertedRectangles_.push_back(line_); }
  void take(Function<SVG_DrawLine>, const POINT*, const POINT*);
  void take(Function<SVG_DrawRectangle>, const RECT*);
  void take(Function<SVG_DrawRoundedRectangle>, const RECT*, uint32_t, uint32_t, uint16_t);
  void take(Function<SVG_DrawPolyline>, const POINT*, uint32_t count);
  void take(Function<SVG_DrawPolygon>, const POINT*, uint32_t count);
  void take(Function<SVG_DrawPath>, const POINT*, const uint8_t*, uint32_t);
  void take(Function<SVG_SetFont>, const SVG_Char*, uint32_t, int32_t, int32_t, int32_t);
  void take(Function<SVG_ClearFont>) { font_.reset(); }
  void take(Function<SVG_DrawText>, const SVG_Char*, int32_t, const POINT*, const int32_t*,
            uint32_t);
  void take(Function<SVG_BeginCharacterBlock>);
  void take(Function<SVG_EndCharacterBlock>) { block_.reset(); }
  void take(Function<SVG_BeginCharacter>, const POINT* position);
  void take(Function<SVG_SetCharacterReference>, uint32_t reference, const POINT* position);
  void take(Function<SVG_DrawImage>, uint16_t, const RECT*, const uint8_t*, int32_t, uint16_t);
  void take(Function<SVG_BeginClippingRegion>, const RECT* rectangle);
  void take(Function<SVG_AddClippingRegion>, const RECT* rectangle);
  void take(Function<SVG_ExcludeClippingRegion>, const RECT* rectangle);
  void take(Function<SVG_EndClippingRegion>) { region_ = kNone; }
  void take(Function<SVG_SetCurrentClippingRegion>, uint32_t region);
  void take(Function<SVG_BeginFormField>, uint16_t, uint8_t, uint8_t, const RECT*, const SVG_Char*,
            int32_t, const void*, int32_t) {
    openGroup("g", "SVG_BeginFormField");
  }
  void take(Function<SVG_BeginLink>, uint16_t, const SVG_Char*, int32_t) {
    openGroup("a", "SVG_BeginLink");
  }
  void take(Function<SVG_BeginSignatureField>, const RECT*, const SVG_Char*, int32_t,
            const SVG_Char*, int32_t) {
    openGroup("g", "SVG_BeginSignatureField");
  }
  void take(Function<SVG_EndFormField>) { group_.reset(); }
  void take(Function<SVG_EndLink>) { group_.reset(); }
  void take(Function<SVG_EndSignatureField>) { group_.reset(); }
  void take(Function<SVG_SetDocumentTarget>, const POINT*, const SVG_Char*, int32_t) {
    add("velumark:target");
  }

  void paintIsSet();
  void fileRegion(Region region);
  template <auto function, class... P>
  void addShape(const char* tag, Function<function> which, P... parameters);
  Element& add(const char* tag);
  void openGroup(const char* tag, std::string_view function);
  Element definitions() const;

  const RECT page_;
  const int pageLine_;
  int line_ = 0;
  Paint paint_;
  bool inverting_ = false;
  bool isClosed_ = false;
  std::optional<Font> font_;
  int fontLine_ = kNone;  // of the first font that text is drawn with
  int region_ = kNone;
  std::vector<Region> regions_;
  std::optional<Group> group_;
  Element* groupElement_ = nullptr;
  std::optional<Block> block_;
  Element* blockElement_ = nullptr;
  std::list<Element> content_;
  std::unordered_set<std::u16string> outlines_;
  SvgPictures pictures_;

  // Definitions, by the line that made each.
  std::map<uint32_t, int> rasterPictures_;  // by the key by which the library knows them again
  std::vector<int> rasterLines_;
  std::unordered_map<std::u16string, int> svgContents_;
  std::vector<int> svgContentLines_;
  std::unordered_map<std::u16string, int> svgSymbols_;
  std::vector<int> svgSymbolLines_;
  int inversionLine_ = kNone;
  std::vector<int> invertedPaths_;
  std::vector<int> invertedRectangles_;
};

// All elements of the document of a recording.
std::vector<PlacedElement> elementsOf(const Recording& recording);

// The key by which the library knows a raster picture again.
uint32_t rasterKey(const uint8_t* data, int32_t length);

std::u16string toUnits(const SVG_Char* text, int64_t count);

// As UTF-8, for people: what cannot be written becomes U+FFFD.
std::string toUtf8(const std::u16string& text);

}  // namespace qz::tools
