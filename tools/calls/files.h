// The files beside a recording, each read once however often the page shows it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kinds.h"

namespace qz::tools {

class Files {
 public:
  explicit Files(std::filesystem::path directory) : directory_(std::move(directory)) {}

  // Returns the bytes of the file of that name. Throws RecordingError if it cannot be read.
  Bytes read(const std::string& name);

 private:
  std::filesystem::path directory_;
  std::map<std::string, Bytes> known_;
};

}  // namespace qz::tools
