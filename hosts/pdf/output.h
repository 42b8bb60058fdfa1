// The files that pages are written to.
#pragma once

#include <filesystem>
#include <string>

#include "qzsvggen/qzsvggen.hpp"

namespace qz::pdf {

// A folder for pages. It is made when it is missing, and removed again when nothing was written.
class OutputFolder {
 public:
  // Throws std::runtime_error when files cannot be written there.
  OutputFolder(std::filesystem::path folder, int pageCount);
  OutputFolder(const OutputFolder&) = delete;
  OutputFolder& operator=(const OutputFolder&) = delete;
  ~OutputFolder();

  // Writes a page, counted from 0, as a whole or not at all. Returns its size in bytes. Throws
  // std::runtime_error.
  size_t write(int page, const std::string& document);

 private:
  std::filesystem::path pathOf(int page) const;

  std::filesystem::path folder_;
  size_t digits_;
  bool made_ = false, used_ = false;
};

// The document in UTF-8, its size in points with a viewBox behind it.
std::string inPoints(const std::u16string& document, const RECT& page);

}  // namespace qz::pdf
