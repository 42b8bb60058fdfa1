#include "images/svg_root.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>

namespace qz {
namespace {

// The value of a quoted attribute, and where its closing quote is.
struct AttributeValue {
  Utf16View text;
  size_t end = 0;
};

class RootTagScan {
 public:
  explicit RootTagScan(Utf16View tag) : tag_(tag) {}

  SvgRootAttributes run() {
    SvgRootAttributes result;
    Utf16String id;
    result.others.push_back(' ');
    for (position_ = 4; position_ + 1 < tag_.size(); ++position_)
      if (!take("id", id) && !take("viewBox", result.viewBox) && !take("width", result.width) &&
          !take("height", result.height))
        copy(tag_[position_], result.others);
    return result;
  }

 private:
  // Takes an attribute that has no value yet, and moves on to its closing quote.
  bool take(std::string_view name, Utf16String& value) {
    if (!value.empty()) return false;
    const AttributeValue found = findAttributeValue(name);
    if (found.text.empty()) return false;
    value = found.text;
    position_ = found.end;
    return true;
  }

  // Whatever stands between the name and the next quote is skipped unchecked.
  AttributeValue findAttributeValue(std::string_view name) {
    if (position_ + name.size() >= tag_.size()) return {};
    for (size_t i = 0; i < name.size(); ++i)
      if (tag_[position_ + i] != static_cast<CodeUnit>(name[i])) return {};
    seekQuote();
    if (closingQuote_ == tag_.npos) return {};
    return {tag_.substr(openingQuote_ + 1, closingQuote_ - openingQuote_ - 1), closingQuote_};
  }

  // The first quote from here on and the next one of its kind. They are kept while the scan is in
  // front of them: looking them up anew each time would be quadratic.
  void seekQuote() {
    if (openingQuote_ != tag_.npos && openingQuote_ >= position_) return;
    if (soughtToEnd_) return;
    constexpr CodeUnit kQuotes[] = {'"', '\''};
    openingQuote_ = tag_.find_first_of(kQuotes, position_, 2);
    soughtToEnd_ = openingQuote_ == tag_.npos;
    closingQuote_ = soughtToEnd_ ? tag_.npos : tag_.find(tag_[openingQuote_], openingQuote_ + 1);
  }

  // White space outside quotes collapses to one space; any quote character opens or closes quotes.
  void copy(CodeUnit unit, Utf16String& out) {
    if (unit == '"' || unit == '\'') inQuotes_ = !inQuotes_;
    const bool isSpace = unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r';
    if (!isSpace || inQuotes_)
      out.push_back(unit);
    else if (out.back() != ' ')
      out.push_back(' ');
  }

  const Utf16View tag_;
  size_t position_ = 0;
  size_t openingQuote_ = Utf16View::npos;
  size_t closingQuote_ = Utf16View::npos;
  bool soughtToEnd_ = false;
  bool inQuotes_ = false;
};

// Takes the unit off a length's end: "%", or two characters of which the first is one of c, e, i,
// m and p. Without one it is "px".
std::string takeUnit(std::string& length) {
  while (!length.empty() && length.back() == ' ') length.pop_back();
  const size_t size = length.size();
  size_t unitSize = 0;
  if (size > 0 && length.back() == '%')
    unitSize = 1;
  else if (size > 1 && std::string_view("ceimp").find(length[size - 2]) != std::string_view::npos)
    unitSize = 2;
  if (unitSize == 0) return "px";
  std::string unit = length.substr(size - unitSize);
  length.resize(size - unitSize);
  return unit;
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// Tells whether a number that no float can hold is too small or too large: by the place of its
// first digit and its exponent.
bool isBelowOne(std::string_view number) {
  const std::string_view mantissa = number.substr(0, number.find_first_of("eE"));
  number.remove_prefix(std::min(mantissa.size() + 1, number.size()));
  if (number.starts_with('+')) number.remove_prefix(1);
  int32_t exponent = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), exponent);
  if (error == std::errc::result_out_of_range) return number.front() == '-';
  const size_t point = std::min(mantissa.find('.'), mantissa.size());
  const size_t firstDigit = mantissa.find_first_of("123456789");
  return static_cast<int64_t>(point) - static_cast<int64_t>(firstDigit) + exponent < 0;
}

// The longest leading number; what follows it is ignored. Too large is no number, too small is 0.
std::optional<float> parseNumber(std::string_view text) {
  const size_t start = text.find_first_not_of(" \t\n\v\f\r");
  if (start == text.npos) return std::nullopt;
  text.remove_prefix(start);
  const bool negative = text.front() == '-';
  if (negative || text.front() == '+') text.remove_prefix(1);
  if (text.empty() || !(isDigit(text.front()) || text.front() == '.')) return std::nullopt;

  float value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    if (!isBelowOne({text.data(), static_cast<size_t>(end - text.data())})) return std::nullopt;
    value = 0;
  }
  return negative ? -value : value;
}

}  // namespace

SvgRootAttributes parseSvgRoot(Utf16View tag) { return RootTagScan(tag).run(); }

std::optional<float> parseSvgLength(Utf16View text, int32_t reference) {
  std::string length;  // characters beyond ASCII end the number, whatever they are
  for (const CodeUnit unit : text) length.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
  const std::string unit = takeUnit(length);
  const std::optional<float> number = parseNumber(length);
  if (!number) return std::nullopt;
  const float value = *number;
  if (unit == "px") return value;
  if (unit == "in") return value * 96.0f;
  if (unit == "cm") return value * 96.0f / 2.54f;
  if (unit == "mm") return value * 96.0f / 25.4f;
  if (unit == "pt") return value * 72.0f / 96.0f;
  if (unit == "pc") return value * 72.0f * 12.0f / 96.0f;
  if (unit == "%") return static_cast<float>(reference) * value / 1500.0f;
  return std::nullopt;
}

}  // namespace qz
