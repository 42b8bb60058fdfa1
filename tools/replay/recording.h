// A recording: the calls of one page as JSON Lines, read, checked against the contract of the C
// interface, and replayed onto a generator.
//
// Each line is one call, ["SVG_DrawLine",[10,10],[20,10]]: the function's name, then its arguments
// in the header's order, without the handle and without counts, which follow from the data.
//
//   integer    a whole number in the range of its C type
//   RECT       [left, top, right, bottom]
//   POINT      [x, y]; a list of points is [[x, y], ...]
//   types      [6, 2, 3, ...], one a point
//   advances   [7, 6, 8, ...], one a code unit of the text, or null
//   text       a string, or {"text": ...}, {"base64": UTF-16LE bytes}, {"file": name}; the objects
//              may carry a "count" of their own that is lower than the data's
//   bytes      the same; a string stands for its UTF-16LE bytes, and the count is one of bytes
//
// The first line is SVG_Create. The two SVG_Close calls and SVG_Delete at the end are implied;
// ["SVG_Close"] is a further SVG_Close with a null buffer.
#pragma once

#include <qzsvggen/qzsvggen.h>
#if defined(_WIN32)
#include <windows.h>
#endif

#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "files.h"

namespace qz {

// What is wrong with a line or a page, for people to read.
class RecordingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Recording {
 public:
  using Call = std::function<void(SvgGenerator*)>;

  // Pictures named by {"file": ...} are read from `directory`.
  explicit Recording(std::filesystem::path directory) : files_(std::move(directory)) {}

  // Adds a line's call. Throws RecordingError, and the recording stays as it was.
  void append(const std::string& line);

  // The page's rectangle, or null before SVG_Create.
  const RECT* page() const { return page_.get(); }

  // The calls between SVG_Create and the end. They own all their data.
  const std::vector<Call>& calls() const { return calls_; }

 private:
  Files files_;
  std::unique_ptr<const RECT> page_;
  std::vector<Call> calls_;
};

// A recording on its way to a document: constructed, drawn, closed.
class Replay {
 public:
  // `recording` must have its page and live as long as this. Throws std::bad_alloc.
  explicit Replay(const Recording& recording);

  // Makes all the calls.
  void draw();

  // Returns the document's UTF-16 code units. Throws RecordingError when it cannot be written.
  std::basic_string<SVG_Char> close();

 private:
  const Recording& recording_;
  std::unique_ptr<SvgGenerator, decltype(&SVG_Delete)> generator_;
};

}  // namespace qz
