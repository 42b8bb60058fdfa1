#include "json_writer.h"

#include <algorithm>

#include "byte_order.h"

namespace qz::tools {
namespace {

constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kHex[] = "0123456789abcdef";

char16_t unitAt(const uint8_t* bytes, std::size_t index) {
  return static_cast<char16_t>(bytes[2 * index] | bytes[2 * index + 1] << 8);
}

bool isHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

}  // namespace

void JsonWriter::raw(std::string_view text) {
  for (; !text.empty(); text.remove_prefix(std::min<std::size_t>(text.size(), kRoom))) {
    makeRoom();
    append(text.substr(0, kRoom));
  }
}

void JsonWriter::quoted(std::string_view ascii) {
  makeRoom();
  *next_++ = '"';
  for (const char each : ascii) {
    makeRoom();
    unit(static_cast<unsigned char>(each));
  }
  *next_++ = '"';
}

void JsonWriter::points(const POINT* points, std::size_t count) {
  makeRoom();
  append(",[");
  for (std::size_t i = 0; i < count; ++i) {
    makeRoom();
    if (i > 0) *next_++ = ',';
    pair(points[i]);
  }
  *next_++ = ']';
}

void JsonWriter::unit(char16_t unit) {
  if (unit == '"' || unit == '\\') {
    *next_++ = '\\';
    *next_++ = static_cast<char>(unit);
  } else if (unit < 0x20 || unit == 0x7F) {
    append("\\u00");
    *next_++ = kHex[unit >> 4];
    *next_++ = kHex[unit & 15];
  } else {
    codePoint(unit);
  }
}

void JsonWriter::codePoint(char32_t codePoint) {
  const auto byte = [&](unsigned head, int shift, unsigned mask) {
    *next_++ = static_cast<char>(head | ((codePoint >> shift) & mask));
  };
  if (codePoint < 0x80) {
    byte(0, 0, 0x7F);
    return;
  }
  if (codePoint < 0x800) {
    byte(0xC0, 6, 0x1F);
  } else {
    if (codePoint < 0x10000) {
      byte(0xE0, 12, 0x0F);
    } else {
      byte(0xF0, 18, 0x07);
      byte(0x80, 12, 0x3F);
    }
    byte(0x80, 6, 0x3F);
  }
  byte(0x80, 0, 0x3F);
}

// Returns false, with part of the string written, when there is half a surrogate pair.
bool JsonWriter::string(const uint8_t* units, std::size_t count) {
  makeRoom();
  append(",\"");
  for (std::size_t i = 0; i < count; ++i) {
    makeRoom();
    const char16_t first = unitAt(units, i);
    if (isHigh(first) && i + 1 < count && isLow(unitAt(units, i + 1))) {
      const char16_t second = unitAt(units, ++i);
      codePoint(0x10000u + ((first & 0x3FFu) << 10) + (second & 0x3FFu));
    } else if (isHigh(first) || isLow(first)) {
      return false;
    } else {
      unit(first);
    }
  }
  *next_++ = '"';
  return true;
}

void JsonWriter::base64(const uint8_t* data, std::size_t size) {
  makeRoom();
  append(",{\"base64\":\"");
  for (std::size_t i = 0; i < size; i += 3) {
    makeRoom();
    const std::size_t left = size - i;
    const uint32_t bits = static_cast<uint32_t>(data[i] << 16) |
                          (left > 1 ? static_cast<uint32_t>(data[i + 1] << 8) : 0u) |
                          (left > 2 ? data[i + 2] : 0u);
    *next_++ = kBase64[bits >> 18];
    *next_++ = kBase64[bits >> 12 & 63];
    *next_++ = left > 1 ? kBase64[bits >> 6 & 63] : '=';
    *next_++ = left > 2 ? kBase64[bits & 63] : '=';
  }
  *next_++ = '"';
}

// Code units behind `kept` bytes; `count` is written where it is not what the data has.
void JsonWriter::data(const void* data, std::size_t size, std::size_t kept,
                      std::optional<int64_t> count) {
  const auto* bytes = static_cast<const uint8_t*>(data);
  std::vector<uint8_t> lowByteFirst;
  if (kHighByteFirst) {
    lowByteFirst = inOtherOrder(bytes, size, kept);
    bytes = lowByteFirst.data();
  }
  if (!count && size % 2 == 0) {
    const std::size_t start = position();
    if (string(bytes, size / 2)) return;
    goBack(start);
  }
  base64(bytes, size);
  if (count) {
    makeRoom();
    append(",\"count\":");
    digits(*count);
  }
  *next_++ = '}';
}

void JsonWriter::text(const SVG_Char* units, int64_t count) {
  textLength = static_cast<std::size_t>(std::max<int64_t>(count, 0));
  data(units, 2 * textLength, 0, count < 0 ? std::optional(count) : std::nullopt);
}

void JsonWriter::unitBytes(const void* bytes, int64_t size, int64_t least) {
  const int64_t present = std::max({size, least, int64_t{0}});
  data(bytes, static_cast<std::size_t>(present), static_cast<std::size_t>(least),
       size < present ? std::optional(size) : std::nullopt);
}

void JsonWriter::picture(const uint8_t* data, int64_t size) {
  if (size > 0) {
    const std::string name = keepPicture(data, static_cast<std::size_t>(size));
    if (!name.empty()) {
      makeRoom();
      append(",{\"file\":\"");
      append(name);
      append("\"}");
      return;
    }
  }
  base64(data, static_cast<std::size_t>(std::max<int64_t>(size, 0)));
  if (size < 0) {
    append(",\"count\":");
    digits(size);
  }
  *next_++ = '}';
}

std::string JsonText::take() {
  text_.resize(position());
  next_ = end_ = nullptr;
  return std::move(text_);
}

void JsonText::grow() {
  const std::size_t written = position();
  text_.resize(2 * written + 2 * static_cast<std::size_t>(kRoom));
  next_ = text_.data() + written;
  end_ = text_.data() + text_.size();
}

std::size_t JsonText::position() const {
  return next_ == nullptr ? 0 : static_cast<std::size_t>(next_ - text_.data());
}

void JsonText::goBack(std::size_t position) { next_ = text_.data() + position; }

}  // namespace qz::tools
