#include "dates.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <regex>

namespace qz::pdf {
namespace {

// Those that a script may name by their number.
constexpr std::array numberedPatterns = {
    "m/d",         "m/d/yy",       "mm/dd/yy",       "mm/yy",       "d-mmm",
    "d-mmm-yy",    "dd-mmm-yy",    "yy-mm-dd",       "mmm-yy",      "mmmm-yy",
    "mmm d, yyyy", "mmmm d, yyyy", "m/d/yy h:MM tt", "m/d/yy HH:MM"};

constexpr std::string_view months = "janfebmaraprmayjunjulaugsepoctnovdec";

bool isLetter(char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; }

int readNumber(std::string_view& text) {
  int number = -1;
  for (; !text.empty() && text[0] >= '0' && text[0] <= '9' && number < 100'000;
       text.remove_prefix(1))
    number = std::max(number, 0) * 10 + (text[0] - '0');
  return number;
}

int readMonth(std::string_view& text) {
  std::string word;
  for (; !text.empty() && isLetter(text[0]); text.remove_prefix(1))
    word += static_cast<char>(text[0] | 0x20);
  const size_t found = word.size() < 3 ? std::string_view::npos : months.find(word.substr(0, 3));
  return found == std::string_view::npos ? -1 : static_cast<int>(found / 3) + 1;
}

}  // namespace

std::optional<std::string> datePattern(const std::string& script) {
  static const std::regex call(R"(AFDate_Format(?:Ex)?\s*\(\s*(?:["']([^"']*)["']|(\d{1,2})))");
  std::smatch match;
  if (!std::regex_search(script, match, call)) return std::nullopt;
  if (match[1].matched) return match[1].str();
  const size_t number = std::stoul(match[2].str());
  return numberedPatterns[std::min(number, numberedPatterns.size() - 1)];
}

int64_t daysOfDate(std::string_view text, std::string_view pattern) {
  using namespace std::chrono;
  int read[3] = {-1, 1, 1};  // year, month, day
  while (!pattern.empty() && !text.empty()) {
    const char sign = pattern[0];
    const size_t length = std::min(pattern.find_first_not_of(sign), pattern.size());
    if (sign == 'y')
      read[0] = readNumber(text);
    else if (sign == 'm')
      read[1] = length > 2 ? readMonth(text) : readNumber(text);
    else if (sign == 'd')
      read[2] = readNumber(text);
    else if (text[0] == sign)
      text.remove_prefix(std::min(length, text.size()));
    else
      break;
    pattern.remove_prefix(length);
  }
  if (read[0] >= 0 && read[0] < 100) read[0] += read[0] < 50 ? 2000 : 1900;
  const year_month_day date{year{read[0]}, month{static_cast<unsigned>(read[1])},
                            day{static_cast<unsigned>(read[2])}};
  if (read[0] < 0 || read[0] > 9999 || !date.ok()) return 0;
  return (sys_days{date} - sys_days{year{1899} / 12 / 30}).count();
}

}  // namespace qz::pdf
