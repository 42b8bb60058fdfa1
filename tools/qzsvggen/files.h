// What the subcommands read and write.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "recording.h"

namespace qz::tools {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// A message for the user that is complete as it is.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// One line on standard error that is written over, when that is a terminal and the work takes long.
class Progress {
 public:
  ~Progress();
  // Whether it is time to show something.
  bool isDue();
  void show(const std::string& text);

 private:
  Clock::time_point next_ = Clock::now() + std::chrono::seconds(1);
  std::size_t shown_ = 0;
};

// Reads a file. Throws Failure that says why it cannot be read.
std::string readFile(const fs::path& path);

// Reads a recording; says on standard error when its last line was cut off. Throws Failure.
Recording readRecording(const fs::path& path);

// Draws a recording, or its calls up to a line. Throws Failure, which names `path`.
Document drawDocument(const fs::path& path, const Recording& recording, int lastLine = 0);

// `replaced` counts the lone surrogates, which UTF-8 cannot express.
std::string encodeUtf8(const Document& document, int& replaced);
std::string encodeUtf16(const Document& document);

// Writes to a file, aside and renamed, or to standard output. Throws Failure, and what was there
// stays. `inputs` are files that it refuses to overwrite.
void writeOutput(const std::string& bytes, const std::optional<fs::path>& path,
                 const std::vector<fs::path>& inputs = {});

}  // namespace qz::tools
