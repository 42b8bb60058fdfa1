#include "output.h"

#include <unistd.h>

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

OutputFolder::OutputFolder(fs::path folder)
    : folder_(std::move(folder)), run_(std::to_string(getpid())) {}

void OutputFolder::make() {
  std::error_code error;
  made_ = fs::create_directories(folder_, error);
  if (error || !fs::is_directory(folder_)) throw std::runtime_error("no folder can be made there");
  const fs::path probe = partOf("probe");
  const bool writable = std::ofstream(probe).is_open();
  fs::remove(probe, error);
  if (!writable) throw std::runtime_error("the folder cannot be written");
}

fs::path OutputFolder::partOf(const std::string& name) const {
  return folder_ / (name + '.' + run_ + ".part");
}

void OutputFolder::write(const std::string& name,
                         const std::function<void(std::ostream&)>& write) const {
  const fs::path path = pathOf(name), part = partOf(name);
  std::ofstream file(part, std::ios::binary);
  write(file);
  file.close();
  std::error_code error;
  if (file) fs::rename(part, path, error);
  if (!file || error) {
    removePart(name);
    throw std::runtime_error(path.string() + " cannot be written");
  }
}

void OutputFolder::removePart(const std::string& name) const {
  std::error_code ignored;
  fs::remove(partOf(name), ignored);
}

void OutputFolder::removeIfEmpty() const {
  std::error_code ignored;
  if (made_) fs::remove(folder_, ignored);  // which fails while there is anything in it
}

std::string pageName(int page, int pageCount) {
  const size_t digits = std::max<size_t>(3, std::to_string(pageCount).size());
  const std::string number = std::to_string(page + 1);
  return "page-" + std::string(digits - std::min(digits, number.size()), '0') + number + ".svg";
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
