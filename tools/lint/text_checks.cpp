#include "text_checks.h"

#include <algorithm>
#include <cstdio>
#include <set>

namespace qz::tools {
namespace {

bool isNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || (c & 0x80) != 0;
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\0'; }

std::string lowered(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return result;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

// One word of an unquoted name.
std::string wordFault(std::string_view word) {
  const std::string_view rest = word.substr(word.starts_with('-') ? 1 : 0);
  if (rest.empty() || !(isNameStart(rest.front()) || (rest.front() == '-' && rest.size() > 1)))
    return "\"" + std::string(word) + "\" begins with no letter";
  for (const char c : rest)
    if (!isNameStart(c) && !(c >= '0' && c <= '9') && c != '-')
      return "\"" + std::string(word) + "\" has a \"" + std::string(1, c) + "\"";
  return {};
}

// One name of the list, in quotes or as words.
std::string nameFault(std::string_view name) {
  name = trimmed(name);
  if (name.empty()) return "a name is empty";
  if (name.front() == '"' || name.front() == '\'') {
    const std::size_t end = name.find(name.front(), 1);
    if (end == std::string_view::npos) return "a quote has no end";
    return end + 1 == name.size() ? "" : "something follows a quoted name";
  }
  static const std::set<std::string> kKeywords = {"inherit", "initial", "unset",
                                                  "revert",  "default", "revert-layer"};
  if (kKeywords.contains(lowered(name))) return "\"" + std::string(name) + "\" is a keyword of CSS";
  while (!name.empty()) {
    const auto* const end = std::find_if(name.begin(), name.end(), isBlank);
    const auto length = static_cast<std::size_t>(end - name.begin());
    if (std::string fault = wordFault(name.substr(0, length)); !fault.empty()) return fault;
    name = trimmed(name.substr(length));
  }
  return {};
}

}  // namespace

bool isXmlCharacter(char32_t codePoint) {
  if (codePoint < 0x20) return codePoint == '\t' || codePoint == '\n' || codePoint == '\r';
  return codePoint != 0xFFFE && codePoint != 0xFFFF;
}

std::string fontFamilyFault(std::string_view family) {
  // A comma inside quotes parts nothing.
  std::size_t start = 0;
  char quote = 0;
  for (std::size_t i = 0; i <= family.size(); ++i) {
    const char c = i < family.size() ? family[i] : ',';
    if (quote == 0 && (c == '"' || c == '\''))
      quote = c;
    else if (c == quote)
      quote = 0;
    if (i < family.size() && (c != ',' || quote != 0)) continue;
    if (std::string fault = nameFault(family.substr(start, i - start)); !fault.empty())
      return fault;
    start = i + 1;
  }
  return {};
}

bool isScriptAddress(std::string_view address) {
  const std::string text = lowered(trimmed(address));
  return text.starts_with("javascript:") || text.starts_with("vbscript:") ||
         text.starts_with("data:");
}

std::string codePointName(char32_t codePoint) {
  char text[16];
  std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(codePoint));
  return text;
}

}  // namespace qz::tools
