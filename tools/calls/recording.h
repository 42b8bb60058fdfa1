// A recording: the calls of one page as JSON Lines, read, checked against the contract of the C
// interface, and replayed onto a generator. docs/recordings.md describes the format.
#pragma once

#include <qzsvggen/qzsvggen.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "call.h"
#include "files.h"

namespace qz::tools {

// What is wrong with a line or a page, for people to read.
class RecordingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Recording {
 public:
  // Pictures named by {"file": ...} are read from `directory`.
  explicit Recording(std::filesystem::path directory) : files_(std::move(directory)) {}

  // Adds a line's call or note. Throws RecordingError, and the calls stay as they were.
  void append(const std::string& line);

  // The page's rectangle, or null before SVG_Create.
  const RECT* page() const { return page_.get(); }
  int pageLine() const { return pageLine_; }

  // The calls between SVG_Create and the end. They own all their data.
  const std::vector<Call>& calls() const { return calls_; }

  // The lines that are notes, as JSON.
  const std::vector<std::string>& notes() const { return notes_; }

  int lines() const { return lines_; }

 private:
  Files files_;
  std::unique_ptr<const RECT> page_;
  std::vector<Call> calls_;
  std::vector<std::string> notes_;
  int pageLine_ = 0;
  int lines_ = 0;
};

using Document = std::basic_string<SVG_Char>;

// A recording on its way to a document: constructed, drawn, closed.
class Replay {
 public:
  // `recording` must have its page and live as long as this. Throws std::bad_alloc.
  explicit Replay(const Recording& recording);

  // Makes all the calls, or those up to a line. Returns how many.
  std::size_t draw(int lastLine = 0);

  // Returns the document's UTF-16 code units. Throws RecordingError when it cannot be written.
  Document close();

 private:
  const Recording& recording_;
  std::unique_ptr<SvgGenerator, decltype(&SVG_Delete)> generator_;
};

}  // namespace qz::tools
