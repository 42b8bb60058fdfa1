// The file of one page's trace: a shared mapping, so that what was written is there when the host
// dies, and pictures beside it.
#pragma once

#include <string>

#include "json_writer.h"

namespace qz::tools {

class TraceFile final : public JsonWriter {
 public:
  // Opens a new file PREFIX-NNNN.jsonl. Without room for it nothing is written, and that is said.
  TraceFile(const std::string& folder, const std::string& prefix);
  ~TraceFile() override;

  // Cuts the file to what was written, up to the end of the last line.
  void close();

  // Whether lines still reach the file. When the disk is full they do not; the file then ends with
  // the last whole line.
  bool isOpen() const { return isOpen_; }

  const std::string& path() const { return name_; }

  // To be called where a line begins.
  void beginLine() { lineStart_ = position(); }

 private:
  void grow() override;
  std::size_t position() const override { return static_cast<std::size_t>(next_ - begin_); }
  void goBack(std::size_t position) override { next_ = begin_ + (isOpen_ ? position : 0); }
  std::string keepPicture(const uint8_t* data, std::size_t size) override;

  bool open();
  bool map(std::size_t size);  // makes the file at least so large, and maps it
  void unmap();
  void cut(std::size_t size);
  void giveUp(const char* why);

  const std::string folder_;
  std::string name_;
  char* begin_ = nullptr;
  std::size_t size_ = 0;
  std::size_t lineStart_ = 0;
  bool isOpen_ = false;
  char waste_[kRoom * 2];  // what is written to when there is no file
#if defined(_WIN32)
  void* file_ = nullptr;
#else
  int file_ = -1;
#endif
};

// Says something about the trace, once on standard error.
void sayOfTrace(const std::string& what);

}  // namespace qz::tools
