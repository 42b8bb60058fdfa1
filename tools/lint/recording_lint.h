// Checks the calls of one recording: a consumer of calls.
//
// Each check looks at a call with the state in force before it. Checks are grouped as the header
// is.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "findings.h"
#include "page_state.h"
#include "recording.h"

namespace qz::tools {

// Where something lies, in 64 bits so that nothing wraps around.
struct Box {
  int64_t left, top, right, bottom;
};

// What must be known of all pages of a document: links go from one to another.
struct Links {
  std::set<std::string> targets;
  struct Use {
    std::size_t page;
    int line;
    std::string target;
  };
  std::vector<Use> uses;
};

class RecordingLint {
 public:
  RecordingLint(const Recording& recording, Findings& findings);

  // Checks the whole recording. `links`, if given, gathers the links of a document's pages.
  void run(Links* links, std::size_t page);

  template <auto function, class... P>
  void operator()(Function<function> which, P... parameters) {
    wrapped_ = false;
    if (state_.isClosed())
      report(rule("after-close"), std::string(functionName<function>) + " behind SVG_Close");
    else
      check(which, parameters...);
    state_(which, parameters...);
  }

 private:
  template <auto function, class... P>
  void check(Function<function>, P...) {}

  // Text, in text_lint.cpp.
  void check(Function<SVG_SetFont>, const SVG_Char*, uint32_t, int32_t, int32_t, int32_t);
  void check(Function<SVG_DrawText>, const SVG_Char*, int32_t, const POINT*, const int32_t*,
             uint32_t);
  void checkCharacters(const std::u16string& text);
  void checkFont();
  void checkAdvances(const std::u16string& text, const POINT& origin, const int32_t* advances);
  void countOneCharacterRuns(const std::u16string& text, const POINT& origin);

  // Shapes and inversion, in shape_lint.cpp.
  void check(Function<SVG_SetFill>, uint8_t, uint8_t, uint8_t, uint8_t) { checkBlockState(); }
  void check(Function<SVG_SetStroke>, uint8_t, uint8_t, uint8_t, uint8_t, uint32_t) {
    checkBlockState();
  }
  void check(Function<SVG_ClearStroke>) { checkBlockState(); }
  void check(Function<SVG_DrawLine>, const POINT*, const POINT*);
  void check(Function<SVG_DrawRectangle>, const RECT*);
  void check(Function<SVG_DrawRoundedRectangle>, const RECT*, uint32_t, uint32_t, uint16_t);
  void check(Function<SVG_DrawPolyline>, const POINT*, uint32_t);
  void check(Function<SVG_DrawPolygon>, const POINT*, uint32_t);
  void check(Function<SVG_DrawPath>, const POINT*, const uint8_t*, uint32_t);
  void check(Function<SVG_InvertPath>, const POINT*, const uint8_t*, uint32_t);
  void check(Function<SVG_InvertRectangle>, const RECT*);
  void checkInversion();
  void checkPathData(const POINT*, const uint8_t*, uint32_t);
  bool checkOutline(bool readersMoveIt);
  void checkPaint(const Box& box, bool isLine);
  void checkPlace(const Box& box);

  // Regions, groups and blocks, in structure_lint.cpp.
  void check(Function<SVG_BeginClippingRegion>, const RECT*);
  void check(Function<SVG_AddClippingRegion>, const RECT*);
  void check(Function<SVG_ExcludeClippingRegion>, const RECT*);
  void check(Function<SVG_SetCurrentClippingRegion>, uint32_t);
  void check(Function<SVG_BeginFormField>, uint16_t, uint8_t, uint8_t, const RECT*, const SVG_Char*,
             int32_t, const void*, int32_t);
  void check(Function<SVG_BeginLink>, uint16_t, const SVG_Char*, int32_t);
  void check(Function<SVG_BeginSignatureField>, const RECT*, const SVG_Char*, int32_t,
             const SVG_Char*, int32_t);
  void check(Function<SVG_EndFormField>) { endGroup("SVG_BeginFormField"); }
  void check(Function<SVG_EndLink>) { endGroup("SVG_BeginLink"); }
  void check(Function<SVG_EndSignatureField>) { endGroup("SVG_BeginSignatureField"); }
  void check(Function<SVG_SetDocumentTarget>, const POINT*, const SVG_Char*, int32_t);
  void check(Function<SVG_BeginCharacterBlock>);
  void check(Function<SVG_EndCharacterBlock>);
  void check(Function<SVG_BeginCharacter>, const POINT*);
  void check(Function<SVG_SetCharacterReference>, uint32_t, const POINT*);
  void check(Function<SVG_Close>) { finish(); }
  void beginGroup();
  void endGroup(std::string_view begin);
  void leaveGroup();
  void leaveBlock();
  void checkBounds(const RECT& bounds);
  void checkBlockState();
  void finish();
  void finishRegions();

  // Pictures, in picture_lint.cpp.
  void check(Function<SVG_DrawImage>, uint16_t, const RECT*, const uint8_t*, int32_t, uint16_t);
  void checkSvgPicture(const RECT&, const uint8_t*, int32_t);

  void report(const Rule& rule, std::string cause = {}) {
    reportAt(state_.line(), rule, std::move(cause));
  }
  void reportAt(int line, const Rule& rule, std::string cause = {}) {
    findings_.add(rule, static_cast<std::size_t>(line), std::move(cause));
  }
  // Whether this is the first time that a key comes, of those that are told once.
  bool isFirst(const std::string& key) { return told_.insert(key).second; }

  const Recording& recording_;
  Findings& findings_;
  PageState state_;
  Links* links_ = nullptr;
  std::size_t pageNumber_ = 0;
  bool wrapped_ = false;  // whether a step of this call does
  std::set<std::string> told_;
  std::set<std::string> targets_;

  struct Run {
    int line = 0, length = 0;
    POINT origin{};
    const void* font = nullptr;
    std::string state;
  } run_;  // of one-character runs

  struct Outlines {
    int relative = 0, inPlace = 0, firstRelative = 0;
  } outlines_;  // of the open block: paths that lie near (0, 0) though their characters do not
  std::unordered_map<std::string, std::set<std::string>> shapes_;  // by form, the places
  int repeatedOutlines_ = 0, firstRepeatedOutline_ = 0;
  std::map<uint32_t, std::pair<int, std::string>> rasterPictures_;
  std::map<std::string, const SvgPicture*> svgIds_;
};

// What is wrong with the bytes of a PNG or JPEG picture in these bounds.
void checkRaster(const std::string& bytes, bool isPng, int64_t width, int64_t height,
                 const std::function<void(const Rule&, std::string)>& report);

// The rule against an element of an SVG picture, or null.
const Rule* pictureElementRule(const std::string& tag,
                               const std::vector<std::pair<std::string, std::string>>& attributes);

}  // namespace qz::tools
