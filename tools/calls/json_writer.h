// Writes the lines of a recording from the parameters of C calls.
//
// It writes as it reads: what stands before a parameter that cannot be read has been written.
#pragma once

#include <qzsvggen/qzsvggen.h>
#if defined(_WIN32)
#include <windows.h>
#endif

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace qz::tools {

class JsonWriter {
 public:
  virtual ~JsonWriter() = default;
  JsonWriter() = default;
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;

  void begin(std::string_view function) {
    makeRoom();
    append("[\"");
    append(function);
    *next_++ = '"';
  }
  void end() {
    makeRoom();
    append("]\n");
  }

  // Each of these writes one argument.
  template <class Integer>
  void number(Integer value) {
    makeRoom();
    *next_++ = ',';
    digits(value);
  }
  void null() {
    makeRoom();
    append(",null");
  }
  void rectangle(const RECT& value) {
    makeRoom();
    append(",[");
    digits(value.left);
    comma(value.top);
    comma(value.right);
    comma(value.bottom);
    *next_++ = ']';
  }
  void point(const POINT& value) {
    makeRoom();
    *next_++ = ',';
    pair(value);
  }
  void points(const POINT* points, std::size_t count);
  template <class Integer>
  void numbers(const Integer* values, std::size_t count) {
    makeRoom();
    append(",[");
    for (std::size_t i = 0; i < count; ++i) {
      makeRoom();
      if (i > 0) *next_++ = ',';
      digits(values[i]);
    }
    *next_++ = ']';
  }
  void text(const SVG_Char* units, int64_t count);
  // Bytes that hold code units; at least `leastBytes` are there, whatever the size says.
  void unitBytes(const void* data, int64_t size, int64_t least);
  void picture(const uint8_t* data, int64_t size);

  // Code units of the latest text: what advances have to match.
  std::size_t textLength = 0;
  int64_t leastBytes = 0;

  // A string that is no argument, as the notes have them.
  void quoted(std::string_view ascii);
  void raw(std::string_view text);

 protected:
  // What is appended between two calls of makeRoom() is shorter.
  static constexpr std::ptrdiff_t kRoom = 512;

  // Makes `next_` and `end_` lie kRoom apart at least, and what was written stay.
  virtual void grow() = 0;
  // Where the writer stands; going back there forgets what was written since.
  virtual std::size_t position() const = 0;
  virtual void goBack(std::size_t position) = 0;
  // Keeps a picture in a file. Returns its name, or nothing: then the picture goes into the line.
  virtual std::string keepPicture(const uint8_t* data, std::size_t size) = 0;

  char* next_ = nullptr;
  char* end_ = nullptr;

 private:
  void makeRoom() {
    if (end_ - next_ < kRoom) grow();
  }
  void append(std::string_view text) {
    std::memcpy(next_, text.data(), text.size());
    next_ += text.size();
  }
  template <class Integer>
  void digits(Integer value) {
    next_ = std::to_chars(next_, end_, value).ptr;
  }
  void comma(int32_t value) {
    *next_++ = ',';
    digits(value);
  }
  void pair(const POINT& value) {
    *next_++ = '[';
    digits(value.x);
    comma(value.y);
    *next_++ = ']';
  }
  void unit(char16_t unit);
  void codePoint(char32_t codePoint);
  bool string(const uint8_t* units, std::size_t count);
  void base64(const uint8_t* data, std::size_t size);
  void data(const void* data, std::size_t size, std::size_t kept, std::optional<int64_t> count);
};

// Writes into a string, pictures into the lines.
class JsonText : public JsonWriter {
 public:
  std::string take();

 private:
  void grow() override;
  std::size_t position() const override;
  void goBack(std::size_t position) override;
  std::string keepPicture(const uint8_t*, std::size_t) override { return {}; }

  std::string text_;
};

}  // namespace qz::tools
