// The floor that the library is measured against: a writer that puts text into one UTF-16 buffer,
// front to back, and records nothing.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "qzsvggen/qzsvggen.hpp"

namespace bench {

// The digits of 00 to 99, two units each.
inline constexpr std::array<char16_t, 200> kTwoDigits = [] {
  std::array<char16_t, 200> digits{};
  for (int i = 0; i < 200; ++i)
    digits[i] = static_cast<char16_t>(u'0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
  return digits;
}();

// A point as "x y", without the blank where a minus sign separates the two.
struct Pair {
  int32_t x;
  int32_t y;
  Pair(int32_t left, int32_t top) : x(left), y(top) {}
  explicit Pair(const POINT& point) : x(point.x), y(point.y) {}
};

// Host text; who writes it has to look at every unit.
struct Escaped {
  std::u16string_view text;
};

class FlatWriter {
 public:
  explicit FlatWriter(char16_t* start) : out_(start) {}

  template <class... Pieces>
  void put(const Pieces&... pieces) {
    (append(pieces), ...);
  }

  char16_t* end() const { return out_; }

 private:
  template <size_t size>
  void append(const char16_t (&literal)[size]) {
    std::memcpy(out_, literal, 2 * (size - 1));
    out_ += size - 1;
  }

  void append(char16_t unit) { *out_++ = unit; }

  void append(std::u16string_view text) {
    std::memcpy(out_, text.data(), 2 * text.size());
    out_ += text.size();
  }

  void append(std::string_view text) {
    char16_t* const out = out_;
    for (size_t i = 0; i < text.size(); ++i) out[i] = static_cast<unsigned char>(text[i]);
    out_ += text.size();
  }

  void append(const Escaped& escaped) {
    for (const char16_t unit : escaped.text) {
      switch (unit) {
        case u'"':
          append(u"&quot;");
          break;
        case u'&':
          append(u"&amp;");
          break;
        case u'\'':
          append(u"&apos;");
          break;
        case u'<':
          append(u"&lt;");
          break;
        case u'>':
          append(u"&gt;");
          break;
        default:
          append(unit);
      }
    }
  }

  void append(int32_t number) {
    if (number < 0) *out_++ = u'-';
    digits(number < 0 ? 0u - static_cast<uint32_t>(number) : static_cast<uint32_t>(number));
  }

  void append(const Pair& pair) {
    append(pair.x);
    if (pair.y >= 0) *out_++ = u' ';
    append(pair.y);
  }

  void append(const qzsvggen::Bytes& bytes) {  // as base64
    static constexpr char16_t kAlphabet[] =
        u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto* data = static_cast<const uint8_t*>(bytes.data());
    char16_t* out = out_;
    const auto encode = [&](uint32_t group, int characters) {
      for (int k = 0; k < 4; ++k)
        *out++ = k < characters ? kAlphabet[group >> (18 - 6 * k) & 63] : u'=';
    };
    size_t rest = bytes.size();
    for (; rest >= 3; rest -= 3, data += 3) encode(data[0] << 16 | data[1] << 8 | data[2], 4);
    if (rest == 2) encode(data[0] << 16 | data[1] << 8, 3);
    if (rest == 1) encode(data[0] << 16, 2);
    out_ = out;
  }

  // Counts the digits, then writes them in pairs from the end, as std::to_chars does.
  void digits(uint32_t value) {
    const uint32_t length = value < 10000
                                ? 1 + (value > 9) + (value > 99) + (value > 999)
                                : 5 + (value > 99999) + (value > 999999) + (value > 9999999) +
                                      (value > 99999999) + (value > 999999999);
    char16_t* digit = out_ += length;
    for (; value >= 100; value /= 100) {
      digit -= 2;
      std::memcpy(digit, &kTwoDigits[2 * (value % 100)], 4);
    }
    if (value >= 10)
      std::memcpy(digit - 2, &kTwoDigits[2 * value], 4);
    else
      digit[-1] = static_cast<char16_t>(u'0' + value);
  }

  char16_t* out_;
};

}  // namespace bench
