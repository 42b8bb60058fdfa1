#include "page_state.h"

#include <utf8.h>

#include <algorithm>
#include <iterator>

namespace qz::tools {
namespace {

constexpr uint32_t kReservedKey = 0xFFFFFFFF;  // a picture of this key is not drawn

bool isInside(const RECT& inner, const RECT& outer) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

Element element(std::string tag, int line, std::list<Element> children = {}) {
  return {std::move(tag), line, kNone, std::move(children)};
}

// The text by which an outline is known again: what the library writes for it on another page.
template <auto function, class... P>
std::u16string outlineText(const POINT& position, P... parameters) {
  const RECT nowhere{};
  std::u16string document = drawAlone(nowhere, [&](SvgGenerator* page) {
    SVG_BeginCharacterBlock(page);
    SVG_BeginCharacter(page, &position);
    function(page, parameters...);
  });
  for (const std::u16string_view attribute : {u" d=\"", u" points=\"", u" x1=\""})
    if (const std::size_t start = document.rfind(attribute); start != std::u16string::npos)
      return document.substr(start);
  return document;
}

void place(const Element& element, const std::string& path, std::vector<PlacedElement>& placed) {
  placed.push_back({path, element.line});
  std::map<std::string, int> counts;
  for (const Element& child : element.children)
    place(child, path + "/" + child.tag + "[" + std::to_string(++counts[child.tag]) + "]", placed);
}

}  // namespace

std::optional<Region> cutOut(Region region, const RECT& rectangle) {
  bool absorbed = false, replaced = false;
  for (RECT& cut : region.cut) {
    if (isInside(rectangle, cut)) {
      absorbed = true;
    } else if (isInside(cut, rectangle)) {
      cut = rectangle;
      absorbed = replaced = true;
    }
  }
  if (absorbed && !replaced) return std::nullopt;
  if (!absorbed) region.cut.push_back(rectangle);
  return region;
}

std::vector<PlacedElement> elementsOf(const Recording& recording) {
  PageState state(*recording.page(), recording.pageLine());
  for (const Call& call : recording.calls()) {
    state.setLine(call.line);
    call.to(state);
  }
  return state.elements();
}

uint32_t rasterKey(const uint8_t* data, int32_t length) {
  uint32_t key = 0;
  for (int32_t i = 0; i < length; ++i) key = key * 31 + data[i];
  return key;
}

std::u16string toUnits(const SVG_Char* text, int64_t count) {
  return count > 0 ? std::u16string(text, text + count) : std::u16string();
}

std::string toUtf8(const std::u16string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t codePoint = text[i];
    if ((codePoint & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00)
      codePoint = 0x10000 + ((codePoint & 0x3FF) << 10) + (text[++i] & 0x3FFu);
    utf8::append(codePoint >> 11 == 0x1B ? 0xFFFD : codePoint, std::back_inserter(result));
  }
  return result;
}

// ---- State --------------------------------------------------------------------------------------

void PageState::take(Function<SVG_Close>) {
  block_.reset();
  group_.reset();
  font_.reset();
  region_ = kNone;
  isClosed_ = true;
}

void PageState::paintIsSet() {
  paint_.inverted = inverting_;
  if (inverting_ && inversionLine_ == kNone) inversionLine_ = line_;
}

void PageState::take(Function<SVG_SetFill>, uint8_t alpha, uint8_t red, uint8_t green,
                     uint8_t blue) {
  paint_.fill = {alpha, red, green, blue};
  paintIsSet();
}

void PageState::take(Function<SVG_SetStroke>, uint8_t alpha, uint8_t red, uint8_t green,
                     uint8_t blue, uint32_t width) {
  paint_.stroke = {alpha, red, green, blue};
  paint_.width = width;
  paintIsSet();
}

void PageState::take(Function<SVG_ClearStroke>) {
  paint_.stroke = {};
  paint_.width = 0;
  paintIsSet();
}

void PageState::take(Function<SVG_InvertPath>, const POINT*, const uint8_t*, uint32_t) {
  invertedPaths_.push_back(line_);
}

void PageState::take(Function<SVG_SetFont>, const SVG_Char* family, uint32_t length, int32_t size,
                     int32_t italic, int32_t bold) {
  std::u16string name = toUnits(family, length);
  if (!name.empty() && name.back() == 0) name.pop_back();
  font_ = {std::move(name), size, italic != 0, bold != 0, line_};
}

// ---- Regions ------------------------------------------------------------------------------------

void PageState::fileRegion(Region region) {
  region.line = line_;
  region.used = false;
  regions_.push_back(std::move(region));
  region_ = static_cast<int>(regions_.size()) - 1;
}

void PageState::take(Function<SVG_BeginClippingRegion>, const RECT* rectangle) {
  fileRegion({{*rectangle}, {}});
}

void PageState::take(Function<SVG_AddClippingRegion>, const RECT* rectangle) {
  if (region_ == kNone) return;
  Region region = regions_[static_cast<std::size_t>(region_)];
  region.kept.push_back(*rectangle);
  fileRegion(std::move(region));
}

void PageState::take(Function<SVG_ExcludeClippingRegion>, const RECT* rectangle) {
  if (region_ == kNone) fileRegion({{page_}, {}});
  std::optional<Region> region = cutOut(regions_[static_cast<std::size_t>(region_)], *rectangle);
  if (region)
    fileRegion(std::move(*region));
  else
    region_ = kNone;
}

void PageState::take(Function<SVG_SetCurrentClippingRegion>, uint32_t region) {
  if (region < regions_.size()) region_ = static_cast<int>(region);
}

// ---- Elements -----------------------------------------------------------------------------------

Element& PageState::add(const char* tag) {
  if (region_ != kNone) regions_[static_cast<std::size_t>(region_)].used = true;
  return (group_ ? groupElement_->children : content_)
      .emplace_back(Element{tag, line_, region_, {}});
}

void PageState::openGroup(const char* tag, std::string_view function) {
  group_.reset();
  groupElement_ = &add(tag);
  group_ = {function, line_, region_};
}

template <auto function, class... P>
void PageState::addShape(const char* tag, Function<function>, P... parameters) {
  if (!block_) {
    add(tag);
    return;
  }
  if (block_->characters.empty()) return;
  Character& character = block_->characters.back();
  if (character.shapes++ == 0 && character.showsAnother)
    blockElement_->children.pop_back();  // it has an outline after all
  const bool isNew =
      outlines_.insert(outlineText<function>(character.position, parameters...)).second;
  blockElement_->children.push_back({isNew ? tag : "use", line_, kNone, {}});
}

void PageState::take(Function<SVG_DrawLine> which, const POINT* from, const POINT* to) {
  addShape("line", which, from, to);
}

void PageState::take(Function<SVG_DrawRectangle> which, const RECT* rectangle) {
  addShape("path", which, rectangle);
}

// As an outline it is compared without its corners.
void PageState::take(Function<SVG_DrawRoundedRectangle>, const RECT* rectangle, uint32_t, uint32_t,
                     uint16_t) {
  addShape("path", Function<SVG_DrawRectangle>(), rectangle);
}

void PageState::take(Function<SVG_DrawPolyline> which, const POINT* points, uint32_t count) {
  if (count > 0) addShape("polyline", which, points, count);
}

void PageState::take(Function<SVG_DrawPolygon> which, const POINT* points, uint32_t count) {
  if (count > 0) addShape("polygon", which, points, count);
}

void PageState::take(Function<SVG_DrawPath> which, const POINT* points, const uint8_t* types,
                     uint32_t count) {
  addShape("path", which, points, types, count);
}

void PageState::take(Function<SVG_DrawText>, const SVG_Char*, int32_t length, const POINT*,
                     const int32_t*, uint32_t) {
  if (length < 1) return;
  if (font_ && fontLine_ == kNone) fontLine_ = font_->line;
  add("text");
}

void PageState::take(Function<SVG_BeginCharacterBlock>) {
  blockElement_ = &add("g");
  block_ = {line_, {}};
}

void PageState::take(Function<SVG_BeginCharacter>, const POINT* position) {
  if (block_) block_->characters.push_back({*position, line_, 0, false});
}

void PageState::take(Function<SVG_SetCharacterReference>, uint32_t reference,
                     const POINT* position) {
  if (!block_) return;
  auto& all = block_->characters;
  const bool showsAnother = reference < all.size() && all[reference].shapes > 0;
  if (showsAnother) blockElement_->children.push_back({"use", line_, kNone, {}});
  all.push_back({*position, line_, 0, showsAnother});
}

void PageState::take(Function<SVG_DrawImage>, uint16_t format, const RECT* bounds,
                     const uint8_t* data, int32_t length, uint16_t) {
  if (length < 1) return;
  if (format == SVG_IMAGE_SVG) {
    const SvgPicture& picture = svgPicture(*bounds, data, length);
    if (!picture.isDrawn) return;
    if (svgContents_.emplace(picture.content, line_).second) svgContentLines_.push_back(line_);
    if (svgSymbols_.emplace(picture.sizing + u'|' + picture.content, line_).second)
      svgSymbolLines_.push_back(line_);
  } else {
    const uint32_t key = rasterKey(data, length);
    if (key == kReservedKey) return;
    const bool isStored = format == SVG_IMAGE_PNG || format == SVG_IMAGE_JPEG;
    if (isStored && rasterPictures_.emplace(key, line_).second) rasterLines_.push_back(line_);
  }
  add("use");
}

// ---- The document -------------------------------------------------------------------------------

Element PageState::definitions() const {
  Element defs = element("defs", pageLine_);
  const auto add = [&](Element each) { defs.children.push_back(std::move(each)); };
  if (!isClosed_) {
    for (const Region& region : regions_)
      if (region.used) add(element("clipPath", region.line, {element("path", region.line)}));
    for (const int line : rasterLines_) add(element("symbol", line, {element("image", line)}));
    for (const int line : svgContentLines_) add(element("g", line));
    for (const int line : svgSymbolLines_) add(element("symbol", line, {element("use", line)}));
    if (fontLine_ != kNone) add(element("style", fontLine_));
  }
  const auto filter = [](int line) {
    return element("filter", line, {element("feColorMatrix", line)});
  };
  if (inversionLine_ != kNone || !invertedPaths_.empty())
    add(filter(inversionLine_ != kNone ? inversionLine_ : invertedPaths_.front()));
  if (!invertedPaths_.empty()) {
    Element mask = element("mask", invertedPaths_.front());
    for (const int line : invertedPaths_) mask.children.push_back(element("path", line));
    add(std::move(mask));
  }
  if (!isClosed_)
    for (const int line : invertedRectangles_) add(filter(line));
  return defs;
}

std::vector<PlacedElement> PageState::elements() const {
  std::list<Element> content;
  int region = kNone;
  if (!isClosed_)
    for (const Element& each : content_) {
      if (each.region != kNone && (content.empty() || each.region != region))
        content.push_back(element("g", each.line));
      region = each.region;
      (region == kNone ? content : content.back().children).push_back(each);
    }
  if (!invertedPaths_.empty()) content.push_back(element("use", invertedPaths_.front()));

  Element svg = element("svg", pageLine_, {definitions()});
  const bool isInverted = !isClosed_ && !invertedRectangles_.empty();
  if (isInverted) {
    svg.children.push_back(element("g", pageLine_, std::move(content)));
    for (const int line : invertedRectangles_)
      svg.children.push_back(element("g", line, {element("use", line)}));
  } else {
    std::move(content.begin(), content.end(), std::back_inserter(svg.children));
  }
  std::vector<PlacedElement> placed;
  place(svg, "/svg", placed);
  return placed;
}

}  // namespace qz::tools
