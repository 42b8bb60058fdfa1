#include "index_file.h"

#include <strings.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

#include "document_fonts.h"

namespace qz::pdf {
namespace {

// The viewer and what leads to its pages, bundled from index/app.js.
constexpr std::string_view script =
#include "index_script.inc"
    ;

// Nothing in the document may load anything.
constexpr std::string_view head = R"html(
<meta name="viewport" content="width=device-width">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; script-src 'unsafe-inline';
  style-src 'unsafe-inline'; img-src data:; font-src data:; form-action 'none'; base-uri 'none'">
<style>
  html { scroll-padding-top: 3rem; background: #e6e6e6; }
  body { margin: 0; font: 1rem/1.5 system-ui, sans-serif; }
  header { position: sticky; top: 0; z-index: 1; display: flex; gap: 2rem; padding: .4rem 1rem;
    background: #123440; color: #fff; }
  h1 { flex: 1; margin: 0; font: inherit; overflow: hidden; text-overflow: ellipsis; white-space: nowrap; }
  input { width: 4.5em; font: inherit; }
  velumark-viewer { max-width: 60rem; margin: .8rem auto; overflow: visible; }
  @page { margin: 0; }
  @media print { header { display: none; } velumark-viewer { max-width: none; margin: 0; } }
</style>
)html";

constexpr std::string_view body = R"html(
  <label>Page <input type="number" min="1" value="1"> of <output></output></label>
</header>
<velumark-viewer></velumark-viewer>
<noscript>This file shows its pages by a script. They also stand beside it, one in a file.</noscript>
)html";

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '<')
      result += "&lt;";
    else if (c == '&')
      result += "&amp;";
    else
      result += c;
  }
  return result;
}

// Whether a browser would take a page for more than the data of a script element.
bool breaksOut(const std::string& page) {
  for (size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1))
    for (const std::string_view tag : {"<!--", "<script", "</script"})
      if (strncasecmp(&page[at], tag.data(), tag.size()) == 0) return true;
  return false;
}

std::string contentOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  std::string page = std::move(content).str();
  if (!file.is_open() || file.bad()) throw std::runtime_error(path.string() + " cannot be read");
  if (breaksOut(page)) throw std::runtime_error(path.string() + " holds a script");
  return page;
}

// Packs pages such that a long value of several, as an image or the shape of a letter, is there
// once: where it comes first, and as <NUMBER> from then on. Values are counted as they come,
// and app.js counts likewise.
class Packer {
 public:
  std::string pack(std::string_view page) {
    std::string packed;
    for (auto at = page.begin(); at != page.end();) {
      const auto end = std::find_if_not(at, page.end(), isOfValue);
      addValue(packed, {at, end});
      at = end;
      if (at != page.end()) packed += *at++;
    }
    return packed;
  }

 private:
  static constexpr size_t shortest = 48;

  // Within ASCII bytes are what scripts call units.
  static bool isOfValue(char c) {
    return c >= ' ' && c <= '~' && c != '"' && c != '\'' && c != '(' && c != ')' && c != '<' &&
           c != '>';
  }

  void addValue(std::string& packed, std::string_view value) {
    if (value.size() >= shortest) {
      const auto [found, isNew] = numbers_.try_emplace(std::string(value), numbers_.size());
      if (!isNew) {
        packed += '<' + std::to_string(found->second) + '>';
        return;
      }
    }
    packed += value;
  }

  std::unordered_map<std::string, size_t> numbers_;
};

}  // namespace

void writeIndex(std::ostream& out, const std::string& title,
                const std::vector<std::filesystem::path>& pages) {
  const std::string name = escaped(title);
  out << "<!DOCTYPE html>\n<meta charset=\"utf-8\">\n<title>" << name << "</title>" << head
      << "<header>\n  <h1>" << name << "</h1>" << body;
  DocumentFonts fonts;
  Packer packer;
  for (const std::filesystem::path& page : pages)
    out << "<script type=\"image/svg+xml\">" << packer.pack(fonts.share(contentOf(page)))
        << "</script>\n";
  for (const Font& font : fonts.fonts())
    out << "<script type=\"font/otf\">" << fontAddress(font) << "</script>\n";
  out << "<script>" << script << "</script>\n";
}

}  // namespace qz::pdf
