// Writes calls as C source from the parameters of C calls: a statement each, in a scope of its own
// when it needs arrays.
#pragma once

#include <qzsvggen/qzsvggen.h>
#if defined(_WIN32)
#include <windows.h>
#endif

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

namespace qz::tools {

class CWriter {
 public:
  // Each of these adds a parameter to the statement.
  template <class Integer>
  void number(Integer value) {
    parameter(literal(value));
  }
  void rectangle(const RECT& value);
  void point(const POINT& value);
  void points(const POINT* points, std::size_t count);
  template <class Integer>
  void numbers(std::string_view type, std::string_view name, const Integer* values,
               std::size_t count) {
    if (values == nullptr || count == 0) return parameter("NULL");
    std::string list;
    for (std::size_t i = 0; i < count; ++i) item(list, literal(values[i]));
    array(type, name, list);
  }
  void text(const SVG_Char* units, int64_t count);
  void unitBytes(const void* data, int64_t size, int64_t least);
  void picture(const uint8_t* data, int64_t size);

  // Takes the statement with the parameters added so far, indented, with its line feed.
  std::string takeStatement(std::string_view function);

  // The arrays of all pictures so far, each once.
  const std::string& pictures() const { return pictures_; }

  // Code units of the latest text: as many advances are there.
  std::size_t textLength = 0;
  int64_t leastBytes = 0;

 private:
  static std::string literal(int64_t value);
  static std::string literal(int32_t value);
  static std::string literal(uint32_t value) { return std::to_string(value) + "u"; }
  static std::string braced(std::initializer_list<int32_t> values);
  static void item(std::string& list, const std::string& text);
  void parameter(const std::string& text) { parameters_.append(", ").append(text); }
  void array(std::string_view type, std::string_view name, const std::string& list);

  std::string parameters_;
  std::string arrays_;
  std::string pictures_;
  std::map<std::string, std::string> pictureNames_;  // by content
};

}  // namespace qz::tools
