// The arguments of a recorded call: read from JSON, kept, and handed to the C function.
//
// Each kind of argument is a struct. Its constructor takes the call's next JSON value and refuses
// what the C interface leaves undefined; parameters() returns the C parameters that the value
// stands for, which may point into it.
#pragma once

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "recording.h"

namespace qz {

// Walks over a call's arguments. Every failure names the argument that it is about.
class ArgumentReader {
 public:
  ArgumentReader(const nlohmann::json& call, Files& files) : call_(call), files_(files) {}

  void expectCount(std::size_t count) const;
  const nlohmann::json& next() { return call_[++index_]; }
  [[noreturn]] void fail(const std::string& what) const;

  template <class Integer>
  Integer integer(const nlohmann::json& value) const;

  // A list of integers; `form` tells the user what is wanted.
  template <class Integer>
  std::vector<Integer> integers(const nlohmann::json& value, const char* form) const;

  // Text or bytes, with the count that the recording gives instead of the data's own.
  struct Data {
    Bytes bytes;
    std::optional<int64_t> count;
  };
  Data data(const nlohmann::json& value);

  // `count` or, without one, the size, which must not be exceeded.
  template <class Count>
  Count count(std::optional<int64_t> count, std::size_t size) const;

  // Points, or code units of text, in the argument before: what types and advances must match.
  std::size_t lengthBefore = 0;

 private:
  const nlohmann::json& call_;
  Files& files_;
  std::size_t index_ = 0;
};

template <class Integer>
Integer ArgumentReader::integer(const nlohmann::json& value) const {
  if (!value.is_number_integer())
    fail(std::string("must be a whole number, not ") +
         (value.is_number() ? value.dump() : value.type_name()));
  if (value.is_number_unsigned() ? !std::in_range<Integer>(value.get<uint64_t>())
                                 : !std::in_range<Integer>(value.get<int64_t>()))
    fail(value.dump() + " is not in " + std::to_string(std::numeric_limits<Integer>::min()) +
         " to " + std::to_string(std::numeric_limits<Integer>::max()));
  return value.get<Integer>();
}

template <class Integer>
std::vector<Integer> ArgumentReader::integers(const nlohmann::json& value, const char* form) const {
  if (!value.is_array()) fail(std::string("must be ") + form + ", not " + value.type_name());
  std::vector<Integer> result;
  result.reserve(value.size());
  for (const auto& item : value) result.push_back(integer<Integer>(item));
  return result;
}

template <class Count>
Count ArgumentReader::count(std::optional<int64_t> count, std::size_t size) const {
  if (!count && !std::in_range<Count>(size)) fail("the data is too large");
  if (count && (!std::in_range<Count>(*count) || (*count > 0 && uint64_t(*count) > size)))
    fail("a count of " + std::to_string(*count) + " does not fit the data, which has " +
         std::to_string(size));
  return static_cast<Count>(count.value_or(static_cast<int64_t>(size)));
}

// ---- The kinds of arguments ---------------------------------------------------------------------

template <class Integer>
struct Number {
  explicit Number(ArgumentReader& reader) : value(reader.integer<Integer>(reader.next())) {}
  auto parameters() const { return std::tuple(value); }
  Integer value;
};

struct Rectangle {
  explicit Rectangle(ArgumentReader& reader);
  auto parameters() const { return std::tuple(&value); }
  RECT value;
};

struct Point {
  explicit Point(ArgumentReader& reader);
  auto parameters() const { return std::tuple(&value); }
  POINT value;
};

// Points whose count belongs to the types that follow.
struct Points {
  explicit Points(ArgumentReader& reader);
  auto parameters() const { return std::tuple(values.data()); }
  std::vector<POINT> values;
};

struct CountedPoints : Points {
  using Points::Points;
  auto parameters() const {
    return std::tuple(values.data(), static_cast<uint32_t>(values.size()));
  }
};

struct PointTypes {
  explicit PointTypes(ArgumentReader& reader);
  auto parameters() const {
    return std::tuple(values.data(), static_cast<uint32_t>(values.size()));
  }
  std::vector<uint8_t> values;
};

struct Advances {
  explicit Advances(ArgumentReader& reader);
  auto parameters() const { return std::tuple(values ? values->data() : nullptr); }
  std::optional<std::vector<int32_t>> values;
};

// Code units of bytes in little-endian order. The vector has no terminator, so that a sanitizer
// sees whoever reads past the count.
std::vector<SVG_Char> codeUnits(const std::vector<uint8_t>& bytes);

template <class Count>
struct Text {
  explicit Text(ArgumentReader& reader) {
    const ArgumentReader::Data data = reader.data(reader.next());
    if (data.bytes->size() % 2 != 0) reader.fail("an odd number of bytes is no UTF-16 text");
    units = codeUnits(*data.bytes);
    count = reader.count<Count>(data.count, units.size());
    reader.lengthBefore = units.size();
  }
  auto parameters() const { return std::tuple(units.data(), count); }
  std::vector<SVG_Char> units;
  Count count;
};

struct ByteData {
  explicit ByteData(ArgumentReader& reader);
  auto parameters() const { return std::tuple(bytes->data(), size); }
  Bytes bytes;
  int32_t size;
};

// ---- From a function's signature to the kinds of its arguments ----------------------------------

template <class... Parameters>
struct Kinds {
  using Values = std::tuple<>;
};

template <class Kind, class... Rest>
struct KindThen {
  using Values = decltype(std::tuple_cat(std::declval<std::tuple<Kind>>(),
                                         std::declval<typename Kinds<Rest...>::Values>()));
};

template <class Integer, class... Rest>
struct Kinds<Integer, Rest...> : KindThen<Number<Integer>, Rest...> {};
template <class... Rest>
struct Kinds<const RECT*, Rest...> : KindThen<Rectangle, Rest...> {};
template <class... Rest>
struct Kinds<const POINT*, Rest...> : KindThen<Point, Rest...> {};
template <class... Rest>
struct Kinds<const POINT*, uint32_t, Rest...> : KindThen<CountedPoints, Rest...> {};
template <class... Rest>
struct Kinds<const POINT*, const uint8_t*, uint32_t, Rest...>
    : KindThen<Points, const uint8_t*, uint32_t, Rest...> {};
template <class... Rest>
struct Kinds<const uint8_t*, uint32_t, Rest...> : KindThen<PointTypes, Rest...> {};
template <class... Rest>
struct Kinds<const int32_t*, Rest...> : KindThen<Advances, Rest...> {};
template <class Count, class... Rest>
struct Kinds<const SVG_Char*, Count, Rest...> : KindThen<Text<Count>, Rest...> {};
template <class... Rest>
struct Kinds<const uint8_t*, int32_t, Rest...> : KindThen<ByteData, Rest...> {};
template <class... Rest>
struct Kinds<const void*, int32_t, Rest...> : KindThen<ByteData, Rest...> {};

template <class... Parameters>
auto valuesOf(int32_t(QZSVGGEN_CALL*)(SvgGenerator*, Parameters...)) ->
    typename Kinds<Parameters...>::Values;

template <auto function>
using Values = decltype(valuesOf(function));

template <class... Kind>
std::tuple<Kind...> readValues(ArgumentReader& reader, std::type_identity<std::tuple<Kind...>>) {
  reader.expectCount(sizeof...(Kind));
  return std::tuple<Kind...>{Kind(reader)...};  // braces: from left to right
}

// Reads the arguments of a C function.
template <auto function>
Values<function> readValues(ArgumentReader& reader) {
  return readValues(reader, std::type_identity<Values<function>>());
}

// Makes a call of arguments that were read.
template <auto function>
Recording::Call bind(Values<function> values) {
  return [values = std::move(values)](SvgGenerator* generator) {
    std::apply(function, std::apply(
                             [generator](const auto&... value) {
                               return std::tuple_cat(std::tuple(generator), value.parameters()...);
                             },
                             values));
  };
}

}  // namespace qz
