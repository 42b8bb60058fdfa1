// The files that pages are written to.
#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

#include "qzsvggen/qzsvggen.hpp"

namespace qz::pdf {

// The folder of a document's pages. Several processes may write into it.
class OutputFolder {
 public:
  explicit OutputFolder(std::filesystem::path folder);

  // Makes the folder where it is missing. Throws std::runtime_error when files cannot be written
  // there.
  void make();

  std::filesystem::path pathOf(const std::string& name) const { return folder_ / name; }

  // Writes a file as a whole or not at all; `write` puts its content into a stream. Throws
  // std::runtime_error.
  void write(const std::string& name, const std::function<void(std::ostream&)>& write) const;

  // Removes what a process has left of a file that it was writing when it ended.
  void removePart(const std::string& name) const;
  // Removes the folder if it was made here and is empty.
  void removeIfEmpty() const;

 private:
  std::filesystem::path partOf(const std::string& name) const;

  std::filesystem::path folder_;
  std::string run_;  // parts its files from those of another run at the same time
  bool made_ = false;
};

// The name of a page's file. The page is counted from 0.
std::string pageName(int page, int pageCount);

// The document in UTF-8, its size in points with a viewBox behind it.
std::string inPoints(const std::u16string& document, const RECT& page);

}  // namespace qz::pdf
