#include "output.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "geometry.h"

namespace qz::pdf {
namespace {

namespace fs = std::filesystem;

std::string points(int32_t units) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", static_cast<double>(units) / unitsPerPoint);
  return text;
}

}  // namespace

OutputFolder::OutputFolder(fs::path folder, int pageCount)
    : folder_(std::move(folder)), digits_(std::max<size_t>(3, std::to_string(pageCount).size())) {
  std::error_code error;
  made_ = fs::create_directories(folder_, error);
  if (error || !fs::is_directory(folder_)) throw std::runtime_error("no folder can be made there");
  const fs::path probe = folder_ / ".qzsvggen-pdf";
  const bool writable = std::ofstream(probe).is_open();
  fs::remove(probe, error);
  if (!writable) throw std::runtime_error("the folder cannot be written");
}

OutputFolder::~OutputFolder() {
  std::error_code ignored;
  if (made_ && !used_) fs::remove(folder_, ignored);
}

fs::path OutputFolder::pathOf(int page) const {
  const std::string number = std::to_string(page + 1);
  return folder_ /
         ("page-" + std::string(digits_ - std::min(digits_, number.size()), '0') + number + ".svg");
}

size_t OutputFolder::write(int page, const std::string& document) {
  const fs::path path = pathOf(page), part = path.string() + ".part";
  std::ofstream file(part, std::ios::binary);
  file << document;
  file.close();
  std::error_code error;
  if (file) fs::rename(part, path, error);
  if (!file || error) {
    std::error_code ignored;
    fs::remove(part, ignored);
    throw std::runtime_error(path.string() + " cannot be written");
  }
  used_ = true;
  return document.size();
}

std::string inPoints(const std::u16string& document, const RECT& page) {
  std::string text = qzsvggen::toUtf8(document);
  const std::string width = std::to_string(page.right), height = std::to_string(page.bottom);
  const std::string size = " width=\"" + width + "\" height=\"" + height + "\"";
  const size_t at = text.find(size);
  if (at == std::string::npos) return text;
  return text.replace(at, size.size(),
                      " width=\"" + points(page.right) + "pt\" height=\"" + points(page.bottom) +
                          "pt\" viewBox=\"0 0 " + width + " " + height + "\"");
}

}  // namespace qz::pdf
