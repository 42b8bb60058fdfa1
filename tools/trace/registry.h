// The generators of the host, by their handles, and what is known of each.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

#include "functions.h"
#include "trace_file.h"

namespace qz::tools {

// A generator's record. It stays when the generator is deleted, and serves again when its address
// comes again.
class TracedPage {
 public:
  // Begins the page of a new generator, whose SVG_Create has been written to `file`.
  void begin(std::unique_ptr<TraceFile> file);
  // Writes the closing note. `problem` is one more thing to tell, if any.
  void end(const char* problem = nullptr);
  bool isLive() const { return isLive_; }

  // The file, at the beginning of a line; null when none can be written.
  TraceFile* beginLine();
  void noteClose(int32_t promised);
  void noteHandOver(const SVG_Char* buffer, int32_t size);
  void noteProblem(const std::string& problem) { ++problems_[problem]; }
  // Of a deleted generator: adds a note to the file that is closed already, and says so, once.
  void appendProblem(const std::string& problem);

  std::mutex mutex;

 private:
  std::unique_ptr<TraceFile> file_;
  std::string path_;
  bool isLive_ = false;
  bool closeIsPending_ = false;  // the last close is implied, unless another call follows
  int32_t promised_ = 1;         // the size that the next close with a buffer has to give
  std::string document_;         // what the closing note says of it
  std::map<std::string, int> problems_;
};

// Holds the page of a call: one thread at a time writes it and makes the call, so that the lines
// are in the order of the calls.
class HeldPage {
 public:
  HeldPage(SvgGenerator* generator, std::string_view function);
  ~HeldPage() {
    if (page_ != nullptr) page_->mutex.unlock();
  }
  HeldPage(HeldPage&& other) noexcept : page_(std::exchange(other.page_, nullptr)) {}

  // The page, or null: an unknown handle, or nothing is recorded.
  TracedPage* operator->() const { return page_; }
  explicit operator bool() const { return page_ != nullptr; }

  // Of SVG_GetVersion: the page that this thread drew on last.
  static HeldPage ofThread();

 private:
  HeldPage() = default;
  TracedPage* page_ = nullptr;
};

// Opens the file of a new page; null when nothing is recorded, as in a child after fork.
std::unique_ptr<TraceFile> openTrace();
void registerPage(SvgGenerator* generator, std::unique_ptr<TraceFile> file);

}  // namespace qz::tools
