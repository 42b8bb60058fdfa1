#include "arguments.h"

#include <utf8.h>

#include <array>
#include <fstream>

#include "byte_order.h"

namespace qz::tools {
namespace {

Bytes shared(std::vector<uint8_t> bytes) {
  return std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
}

// The bytes, low one first, of text that the JSON reader has found to be valid UTF-8.
Bytes utf16Bytes(const std::string& text) {
  std::vector<uint8_t> bytes;
  for (const char16_t unit : utf8::utf8to16(text)) {
    bytes.push_back(static_cast<uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<uint8_t>(unit >> 8));
  }
  bytes.shrink_to_fit();
  return shared(std::move(bytes));
}

constexpr std::string_view base64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::optional<std::vector<uint8_t>> decodeBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  for (int padding = 0; padding < 2 && text.ends_with('='); ++padding) text.remove_suffix(1);
  std::vector<uint8_t> bytes;
  bytes.reserve(text.size() * 3 / 4);
  uint32_t bits = 0;
  int bitCount = 0;
  for (const char digit : text) {
    const std::size_t value = base64Alphabet.find(digit);
    if (value == std::string_view::npos) return std::nullopt;
    bits = bits << 6 | static_cast<uint32_t>(value);
    bitCount += 6;
    if (bitCount < 8) continue;
    bitCount -= 8;
    bytes.push_back(static_cast<uint8_t>(bits >> bitCount & 0xFF));
  }
  return bytes;
}

template <std::size_t size>
std::array<int32_t, size> coordinates(const ArgumentReader& reader, const nlohmann::json& value,
                                      const char* form) {
  if (!value.is_array() || value.size() != size) reader.fail(std::string("must be ") + form);
  std::array<int32_t, size> result;
  for (std::size_t i = 0; i < size; ++i) result[i] = reader.integer<int32_t>(value[i]);
  return result;
}

POINT point(const ArgumentReader& reader, const nlohmann::json& value) {
  const auto [x, y] = coordinates<2>(reader, value, "a point [x, y]");
  return {x, y};
}

}  // namespace

Bytes Files::read(const std::string& name) {
  Bytes& bytes = known_[name];
  if (bytes) return bytes;
  const std::filesystem::path file(std::u8string(name.begin(), name.end()));
  if (file != file.filename())
    throw RecordingError("\"" + name + "\" is not the name of a file beside the recording");
  std::error_code error;  // also of what is no regular file
  std::vector<uint8_t> content;
  if (const auto size = std::filesystem::file_size(directory_ / file, error); !error)
    content.resize(static_cast<std::size_t>(size));
  std::ifstream in(directory_ / file, std::ios::binary);
  if (error || !in.read(reinterpret_cast<char*>(content.data()), std::ssize(content)))
    throw RecordingError("cannot read \"" + name + "\"");
  return bytes = shared(std::move(content));
}

void ArgumentReader::fail(const std::string& what) const {
  throw RecordingError("argument " + std::to_string(index_) + ": " + what);
}

const nlohmann::json& ArgumentReader::next() {
  static const nlohmann::json nothing;
  return ++index_ < call_.size() ? call_[index_] : nothing;
}

void ArgumentReader::expectCount(std::size_t count) const {
  const std::size_t given = call_.size() - 1;
  if (given == count) return;
  throw RecordingError("takes " + std::to_string(count) +
                       (count == 1 ? " argument" : " arguments") + ", not " +
                       std::to_string(given));
}

ArgumentReader::Data ArgumentReader::data(const nlohmann::json& value) {
  if (value.is_string()) return {utf16Bytes(value.get_ref<const std::string&>()), {}};
  if (!value.is_object()) fail(std::string("must be text or an object, not ") + value.type_name());
  Data result;
  for (const auto& [key, item] : value.items()) {
    if (key == "count") {
      result.count = integer<int32_t>(item);
      continue;
    }
    if (key != "text" && key != "base64" && key != "file") fail("unknown member \"" + key + "\"");
    if (result.bytes) fail("has more than one of text, base64 and file");
    if (!item.is_string()) fail("\"" + key + "\" must be a string, not " + item.type_name());
    const std::string& string = item.get_ref<const std::string&>();
    if (key == "base64") {
      auto bytes = decodeBase64(string);
      if (!bytes) fail("is not base64");
      result.bytes = shared(std::move(*bytes));
    } else {
      result.bytes = key == "text" ? utf16Bytes(string) : files_.read(string);
    }
  }
  if (!result.bytes) fail("has none of text, base64 and file");
  return result;
}

Rectangle::Rectangle(ArgumentReader& reader) {
  const auto [left, top, right, bottom] =
      coordinates<4>(reader, reader.next(), "a rectangle [left, top, right, bottom]");
  value = {left, top, right, bottom};
}

Point::Point(ArgumentReader& reader) : value(point(reader, reader.next())) {}

Points::Points(ArgumentReader& reader) {
  const nlohmann::json& list = reader.next();
  if (!list.is_array()) reader.fail("must be a list of points [[x, y], ...]");
  values.reserve(list.size());
  for (const auto& item : list) values.push_back(point(reader, item));
}

TypedPoints::TypedPoints(ArgumentReader& reader)
    : points(reader), types(reader.integers<uint8_t>(reader.next(), "a list of point types")) {
  if (types.size() != points.values.size())
    reader.fail(std::to_string(types.size()) + " types for " +
                std::to_string(points.values.size()) + " points");
}

Units::Units(ArgumentReader& reader) {
  const ArgumentReader::Data data = reader.data(reader.next());
  if (data.bytes->size() % 2 != 0) reader.fail("an odd number of bytes is no UTF-16 text");
  units.resize(data.bytes->size() / 2);
  for (std::size_t i = 0; i < units.size(); ++i)
    units[i] = static_cast<SVG_Char>((*data.bytes)[2 * i] | (*data.bytes)[2 * i + 1] << 8);
  count = data.count;
  reader.textLength = units.size();
}

Advances::Advances(ArgumentReader& reader) {
  const nlohmann::json& value = reader.next();
  if (value.is_null()) return;
  values = reader.integers<int32_t>(value, "a list of advances or null");
  if (values->size() != reader.textLength)
    reader.fail(std::to_string(values->size()) + " advances for " +
                std::to_string(reader.textLength) + " code units");
}

ByteData::ByteData(ArgumentReader& reader) {
  ArgumentReader::Data data = reader.data(reader.next());
  size = reader.count<int32_t>(data.count, data.bytes->size());
  bytes = std::move(data.bytes);
}

UnitBytes::UnitBytes(ArgumentReader& reader, std::size_t kept) : ByteData(reader) {
  if (kHighByteFirst) bytes = shared(inOtherOrder(bytes->data(), bytes->size(), kept));
}

FieldData::FieldData(ArgumentReader& reader) : UnitBytes(reader, reader.isDate() ? 8 : 0) {}

}  // namespace qz::tools
