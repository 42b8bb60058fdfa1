// What lint knows, in one table: what goes wrong in readers, or is surely not meant.
#pragma once

#include <cstddef>
#include <string_view>

namespace qz::tools {

enum class Severity { kError, kWarning, kPerformance, kRemark };

// Remarks are shown with --all alone: right, but seldom useful.
std::string_view severityName(Severity severity);

struct Rule {
  std::string_view id;
  Severity severity;
  std::string_view places;  // found in: R recordings, D documents
  std::string_view cause;   // for the guide; a finding says it with its numbers, where it has any
  std::string_view effect;
  std::string_view advice;
};

#define QZSVGGEN_E Severity::kError
#define QZSVGGEN_W Severity::kWarning
#define QZSVGGEN_P Severity::kPerformance
#define QZSVGGEN_R Severity::kRemark
inline constexpr Rule kRules[] = {
    // ---- Text ----
    {"xml-character", QZSVGGEN_E, "RD", "a character that XML has no place for",
     "readers refuse the whole document", "replace it by a blank"},
    {"lone-surrogate", QZSVGGEN_E, "RD", "half a surrogate pair",
     "most readers refuse the whole document", "replace it by U+FFFD"},
    {"negative-x", QZSVGGEN_E, "RD", "a character behind the first stands at x < 0",
     "browsers drop all positions of the run, which appears at x = 0",
     "start a new run at each character with x < 0"},
    {"crlf-in-run", QZSVGGEN_E, "RD", "CR LF in a run with advances",
     "it is read as one character: those behind it stand one position early",
     "end the run before it"},
    {"font-family", QZSVGGEN_E, "RD", "a family that is no CSS font family",
     "readers drop the rule, at times others with it: default font, 16 px",
     "put double quotes around the name"},
    {"font-size", QZSVGGEN_E, "RD", "a font size of 0 or less",
     "0 is invisible, with less readers drop the rule", "give a size above 0"},
    {"surrogate-in-run", QZSVGGEN_W, "RD", "a surrogate pair before the end of a run with advances",
     "browsers take one position for the pair: those behind it stand one position early",
     "end the run behind the pair"},
    {"no-font", QZSVGGEN_W, "RD", "text without a font", "it is shown in the default font, 16 px",
     "set a font before it"},
    {"scaling-ignored", QZSVGGEN_W, "R", "character scaling without advances",
     "the scaling is not written", "give advances"},
    {"rtl-forward", QZSVGGEN_W, "R", "right-to-left letters with positive advances",
     "browsers show the letters from left to right", "draw such words without advances"},
    {"line-break", QZSVGGEN_W, "RD", "CR or LF in a run", "it is shown as a blank",
     "draw a run for each line"},
    {"invisible-text", QZSVGGEN_R, "R", "text with neither fill nor stroke", "it is not seen",
     "skip it, unless it is there to be found"},
    {"one-character-runs", QZSVGGEN_P, "R", "many runs of one character in a row",
     "each costs as much as a word", "draw them as one run with advances"},
    // ---- Shapes ----
    {"path-start", QZSVGGEN_E, "RD", "a path does not begin with a move", "readers draw nothing",
     "make PT_MOVETO the first type"},
    {"path-curves", QZSVGGEN_E, "RD", "curve points that do not come in threes",
     "readers stop drawing there", "give two control points and an end point"},
    {"path-type", QZSVGGEN_E, "R", "a point type other than 2 to 6",
     "it writes nothing or closes the figure, and shifts what follows", "use the PT_ values"},
    {"path-after-close", QZSVGGEN_W, "R", "a path goes on where it closed away from its start",
     "what follows is displaced", "begin the next figure with a move"},
    {"path-empty", QZSVGGEN_W, "RD", "a path without a line or curve", "nothing is drawn",
     "skip the call"},
    {"few-points", QZSVGGEN_W, "RD", "a polyline or polygon of no or one point", "nothing is drawn",
     "skip the call"},
    {"wrap", QZSVGGEN_E, "R", "a step of more than 2147483647",
     "it wraps around and goes the other way", "bring the coordinates nearer together"},
    {"far", QZSVGGEN_W, "RD", "a coordinate beyond 8388608",
     "it is pixels off in browsers, and wraps around in librsvg", "stay nearer to the origin"},
    {"rounded-corners", QZSVGGEN_E, "RD", "rounded corners",
     "they bulge outward, as the format prescribes", "draw round corners as curves of a path"},
    {"rounded-mask", QZSVGGEN_W, "R", "a corner mask other than 0 and 15",
     "either all corners are rounded or none", "give 15, or 0 for a plain rectangle"},
    {"reversed-rectangle", QZSVGGEN_E, "RD", "a rectangle whose right side is left of its left",
     "browsers draw it across the page", "order the sides"},
    {"line-without-stroke", QZSVGGEN_E, "RD", "a line without a stroke", "it is not seen",
     "set a stroke before it"},
    {"stroke-width-0", QZSVGGEN_W, "R", "a stroke of width 0 and no fill", "nothing is seen",
     "give a width of 1 for the thinnest line"},
    {"invisible-shape", QZSVGGEN_W, "RD", "a shape with neither fill nor stroke", "it is not seen",
     "skip it, or set paint"},
    {"filled-line", QZSVGGEN_W, "RD", "an open polyline with a fill",
     "readers fill the area it encloses", "set a fill of alpha 0 before it"},
    {"off-page", QZSVGGEN_R, "R", "an element outside the page", "it is not seen", "skip it"},
    // ---- The page ----
    {"page-size", QZSVGGEN_E, "RD", "a page without width or height", "nothing is shown",
     "create the page with right > left and bottom > top"},
    {"page-origin", QZSVGGEN_W, "R", "a page that does not begin at (0, 0)",
     "what lies left of or above (0, 0) is not shown", "draw relative to the page's corner"},
    {"after-close", QZSVGGEN_E, "R", "a call behind SVG_Close", "it does nothing",
     "make a generator for each page"},
    // ---- Clip regions ----
    {"clip-lost", QZSVGGEN_E, "R", "a cut inside an earlier cut",
     "clipping ends here: no region is current any more", "skip the call"},
    {"clip-cut-overlap", QZSVGGEN_E, "R", "two cuts of a region overlap",
     "the overlap shows through again", "cut disjoint pieces"},
    {"clip-in-group", QZSVGGEN_E, "R", "a region begun inside a group is to clip its content",
     "a group is clipped as a whole: nothing clips this element",
     "begin the region before the group"},
    {"clip-missing", QZSVGGEN_W, "R", "a rectangle is added without a region",
     "it does nothing: drawing is not clipped", "begin a region first"},
    {"clip-unknown", QZSVGGEN_W, "R", "a region is selected that the page has not",
     "the region stays what it was", "keep the numbers of SVG_GetCurrentClippingRegion"},
    {"clip-overlap", QZSVGGEN_W, "R", "an added rectangle overlaps another of the region",
     "the overlap is left out", "add disjoint pieces"},
    {"clip-empty", QZSVGGEN_W, "R", "a region of an empty rectangle",
     "nothing is seen that is drawn under it", "skip what is clipped away"},
    {"clipped-away", QZSVGGEN_R, "R", "an element outside its clip region", "it is not seen",
     "skip it"},
    {"clip-repeated", QZSVGGEN_P, "R", "the same region made again and again",
     "each is written when something is drawn under it",
     "keep its number and use SVG_SetCurrentClippingRegion"},
    // ---- Groups ----
    {"group-nested", QZSVGGEN_E, "R", "a group begins inside another",
     "the outer one ends here: groups do not nest", "end it before, or draw one group"},
    {"group-not-open", QZSVGGEN_W, "R", "an End call without an open group", "it does nothing",
     "end a group once; one that begins ends the one before"},
    {"group-other-end", QZSVGGEN_W, "R", "a group is ended by the call for another kind",
     "it ends all the same", "use the End call of its kind"},
    {"group-unclosed", QZSVGGEN_W, "R", "a group is open at the end",
     "all that was drawn since belongs to it", "end it where its content ends"},
    {"link-empty", QZSVGGEN_W, "RD", "a link without content", "there is nothing to click on",
     "draw the link's text between Begin and End"},
    {"link-type", QZSVGGEN_W, "RD", "a link that is neither external nor internal",
     "it leads nowhere", "use SVG_LINK_EXTERNAL or SVG_LINK_INTERNAL"},
    {"link-no-target", QZSVGGEN_W, "RD", "a link without a target", "it leads nowhere",
     "give an address or the name of a target"},
    {"link-script", QZSVGGEN_E, "RD", "a link to a script or to data",
     "it runs where the document is part of an HTML page", "let through http, https and mailto"},
    {"link-unresolved", QZSVGGEN_W, "R", "an internal link to a target that no page has",
     "it leads nowhere", "set the target on the page where it is"},
    {"target-repeated", QZSVGGEN_W, "RD", "two targets of one name", "links find the first",
     "name each target once"},
    {"field-data", QZSVGGEN_W, "R", "field data of an odd size, or a date of less than 8 bytes",
     "the odd byte is lost; a short date reads on behind its data", "give whole code units"},
    {"field-bounds", QZSVGGEN_W, "RD", "a field without area, or off the page",
     "a viewer that builds the field has no place for it", "give the field's rectangle"},
    {"field-type", QZSVGGEN_R, "R", "a field type that has no name", "no type is written",
     "use SVG_FIELD_CHECKBOX, _COMBOBOX, _TEXT or _DATE"},
    // ---- Pictures ----
    {"picture-format", QZSVGGEN_E, "RD", "a picture that is neither PNG, JPEG nor SVG",
     "it is not stored: nothing or another picture appears", "convert it to PNG"},
    {"picture-bounds", QZSVGGEN_E, "RD", "a picture without width or height", "it is not shown",
     "order the sides"},
    {"picture-collision", QZSVGGEN_E, "R", "two pictures with the same 32-bit key",
     "the earlier one appears here", "change a byte, of a comment say"},
    {"picture-mismatch", QZSVGGEN_W, "RD", "a picture whose bytes are of another format",
     "some readers show it, others nothing", "give the format of the bytes"},
    {"picture-truncated", QZSVGGEN_W, "RD", "a picture that ends early", "readers show part of it",
     "pass the whole file"},
    {"picture-proportions", QZSVGGEN_W, "RD", "bounds of other proportions than the picture",
     "it is fitted in and centred, not stretched", "give bounds of its proportions"},
    {"svg-broken", QZSVGGEN_E, "RD", "an SVG picture whose copy is not well-formed",
     "readers refuse the whole document",
     "put <svg xmlns=\"...\" viewBox=\"...\"> without other attributes around it"},
    {"svg-not-found", QZSVGGEN_E, "R", "an SVG picture without a root that is recognised",
     "nothing is drawn", "give text with \"<svg \", an attribute, and \"</svg>\""},
    {"svg-root-scan", QZSVGGEN_W, "R", "an SVG picture whose root loses an attribute",
     "its content may look otherwise",
     "put <svg xmlns=\"...\" viewBox=\"...\"> without other attributes around it"},
    {"svg-size", QZSVGGEN_W, "R", "an SVG picture without a viewBox and without a size in px",
     "it is cropped or far too small", "give it a viewBox"},
    {"svg-style", QZSVGGEN_W, "RD", "a style element in an SVG picture", "it styles the whole page",
     "write the styles as attributes"},
    {"svg-ids", QZSVGGEN_W, "R", "an id that another SVG picture of the page has, too",
     "readers take the first", "make ids different"},
    {"svg-script", QZSVGGEN_W, "RD", "a script or foreign content in an SVG picture",
     "it runs where the document is part of an HTML page", "remove it"},
    {"svg-external", QZSVGGEN_R, "RD", "an SVG picture that refers to another file",
     "it is not found beside the document", "embed it"},
    // ---- Text as outlines ----
    {"block-no-character", QZSVGGEN_E, "R", "a shape before a block's first character",
     "it is dropped", "call SVG_BeginCharacter first"},
    {"block-reference", QZSVGGEN_E, "R", "a reference to a character without an outline of its own",
     "nothing is drawn", "refer to the first character that was outlined"},
    {"block-parts", QZSVGGEN_E, "R", "a reference to a character of several shapes",
     "only its first shape is drawn again", "draw each character as one path"},
    {"block-outline", QZSVGGEN_E, "RD",
     "a line, polyline or polygon as an outline of a character that is not at (0, 0)",
     "it is written relative to the character, and appears near the page's corner",
     "use SVG_DrawPath in page coordinates"},
    {"block-relative", QZSVGGEN_E, "R",
     "paths near (0, 0) as outlines of characters that stand elsewhere",
     "paths are not moved: they appear near the page's corner", "draw them in page coordinates"},
    {"block-origin", QZSVGGEN_E, "R", "a reference that stands at (0, 0)", "it is displaced",
     "move it by a unit"},
    {"block-missing", QZSVGGEN_W, "R", "a character without an open block", "it does nothing",
     "call SVG_BeginCharacterBlock first"},
    {"block-nested", QZSVGGEN_W, "R", "a block begins inside another", "the first ends here",
     "end it before"},
    {"block-unclosed", QZSVGGEN_W, "R", "a block is open at the end",
     "shapes drawn since are outlines of its last character", "end it behind its last character"},
    {"block-other", QZSVGGEN_W, "R", "text or a picture inside a block",
     "it is drawn behind the block", "end the block before"},
    {"block-state", QZSVGGEN_W, "R", "paint or the region is set inside a block",
     "the block keeps what was current when it began", "end the block before"},
    {"block-not-shared", QZSVGGEN_P, "R", "outlines that are equal but for their position",
     "each is written in full",
     "keep one block for all characters of one colour and region, and refer"},
    // ---- Inversion ----
    {"invert-late", QZSVGGEN_E, "R", "invert painting begins or ends, and paint is not set anew",
     "what is drawn keeps the earlier paint", "set fill or stroke behind Begin and End"},
    {"invert-flat-line", QZSVGGEN_E, "RD", "a level or upright line in invert painting",
     "it is not shown: its filter has no area", "draw a thin rectangle"},
    {"invert-rectangle", QZSVGGEN_E, "RD", "an inverted rectangle without area",
     "nothing is inverted", "order the sides"},
    {"invert-path", QZSVGGEN_W, "RD", "an inverted path",
     "nothing is inverted until an element has the id \"content\"",
     "give the content that id when you show the page"},
    {"invert-open", QZSVGGEN_W, "R", "invert painting is on at the end",
     "all paint set since is inverted", "call SVG_EndInvertPainting"},
    // ---- Documents ----
    {"not-well-formed", QZSVGGEN_E, "D", "the document is not well-formed", "readers refuse it",
     "see what wrote or changed it"},
};
#undef QZSVGGEN_E
#undef QZSVGGEN_W
#undef QZSVGGEN_P
#undef QZSVGGEN_R

// The rule of an id; one that is misspelt does not compile.
consteval const Rule& rule(std::string_view id) {
  for (const Rule& each : kRules)
    if (each.id == id) return each;
  throw "there is no such rule";
}

}  // namespace qz::tools
