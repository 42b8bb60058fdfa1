// The kinds of arguments. Each knows the three forms of a value: the JSON of a recording, the
// parameters of the C function, and C source.
//
//   constructor    takes the next JSON value and refuses what the C interface leaves undefined
//   parameters()   the C parameters that the value stands for, which may point into it
//   write(), emit()   write C parameters as JSON and as C source
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

#include "c_writer.h"
#include "functions.h"
#include "json_writer.h"

namespace qz::tools {

class ArgumentReader;

using Bytes = std::shared_ptr<const std::vector<uint8_t>>;

template <class Integer>
struct Number {
  explicit Number(ArgumentReader& reader);
  auto parameters() const { return std::tuple(value); }
  template <class Writer>
  static void write(Writer& out, Integer value) {
    out.number(value);
  }
  static void emit(CWriter& out, Integer value) { out.number(value); }
  Integer value;
};

struct Rectangle {
  explicit Rectangle(ArgumentReader& reader);
  auto parameters() const { return std::tuple(&value); }
  static void write(JsonWriter& out, const RECT* value) { out.rectangle(*value); }
  static void emit(CWriter& out, const RECT* value) { out.rectangle(*value); }
  RECT value;
};

struct Point {
  explicit Point(ArgumentReader& reader);
  auto parameters() const { return std::tuple(&value); }
  static void write(JsonWriter& out, const POINT* value) { out.point(*value); }
  static void emit(CWriter& out, const POINT* value) { out.point(*value); }
  POINT value;
};

struct Points {
  explicit Points(ArgumentReader& reader);
  auto parameters() const {
    return std::tuple(values.data(), static_cast<uint32_t>(values.size()));
  }
  static void write(JsonWriter& out, const POINT* points, uint32_t count) {
    out.points(points, count);
  }
  static void emit(CWriter& out, const POINT* points, uint32_t count) {
    out.points(points, count);
    out.number(count);
  }
  std::vector<POINT> values;
};

// Points with their types, in JSON two lists.
struct TypedPoints {
  explicit TypedPoints(ArgumentReader& reader);
  auto parameters() const {
    return std::tuple(points.values.data(), types.data(), static_cast<uint32_t>(types.size()));
  }
  static void write(JsonWriter& out, const POINT* points, const uint8_t* types, uint32_t count) {
    out.points(points, count);
    out.numbers(types, count);
  }
  static void emit(CWriter& out, const POINT* points, const uint8_t* types, uint32_t count) {
    out.points(points, count);
    out.numbers("uint8_t", "types", types, count);
    out.number(count);
  }
  Points points;
  std::vector<uint8_t> types;
};

// Code units without a terminator, so that a sanitizer sees whoever reads past the count.
struct Units {
  explicit Units(ArgumentReader& reader);
  std::vector<SVG_Char> units;
  std::optional<int64_t> count;  // of the recording's own
};

template <class Count>
struct Text : Units {
  explicit Text(ArgumentReader& reader);
  auto parameters() const {
    return std::tuple(units.data(), static_cast<Count>(count.value_or(std::ssize(units))));
  }
  static void write(JsonWriter& out, const SVG_Char* text, Count count) { out.text(text, count); }
  static void emit(CWriter& out, const SVG_Char* text, Count count) {
    out.text(text, count);
    out.number(count);
  }
};

// One a code unit of the text before.
struct Advances {
  explicit Advances(ArgumentReader& reader);
  auto parameters() const { return std::tuple(values ? values->data() : nullptr); }
  static void write(JsonWriter& out, const int32_t* advances) {
    if (advances == nullptr)
      out.null();
    else
      out.numbers(advances, out.textLength);
  }
  static void emit(CWriter& out, const int32_t* advances) {
    out.numbers("int32_t", "advances", advances, out.textLength);
  }
  std::optional<std::vector<int32_t>> values;
};

struct ByteData {
  explicit ByteData(ArgumentReader& reader);
  Bytes bytes;
  int32_t size;
};

// The file of a picture.
struct Picture : ByteData {
  using ByteData::ByteData;
  auto parameters() const { return std::tuple(bytes->data(), size); }
  static void write(JsonWriter& out, const uint8_t* data, int32_t size) { out.picture(data, size); }
  static void emit(CWriter& out, const uint8_t* data, int32_t size) {
    out.picture(data, size);
    out.number(size);
  }
};

// Bytes that hold code units, those of the machine.
struct UnitBytes : ByteData {
  // The first `kept` bytes are a number, low byte first on every machine.
  UnitBytes(ArgumentReader& reader, std::size_t kept);
};

// Of a date eight bytes are there whatever the size says.
struct FieldData : UnitBytes {
  explicit FieldData(ArgumentReader& reader);
  auto parameters() const { return std::tuple(static_cast<const void*>(bytes->data()), size); }
  static void write(JsonWriter& out, const void* data, int32_t size) {
    out.unitBytes(data, size, out.leastBytes);
  }
  static void emit(CWriter& out, const void* data, int32_t size) {
    out.unitBytes(data, size, out.leastBytes);
    out.number(size);
  }
};

// Code units with a size in bytes. The heap's alignment lets the bytes be read as code units.
struct InfoData : UnitBytes {
  explicit InfoData(ArgumentReader& reader) : UnitBytes(reader, 0) {}
  auto parameters() const {
    return std::tuple(reinterpret_cast<const SVG_Char*>(bytes->data()), size);
  }
  static void write(JsonWriter& out, const SVG_Char* data, int32_t size) {
    out.unitBytes(data, size, 0);
  }
  static void emit(CWriter& out, const SVG_Char* data, int32_t size) {
    out.text(data, size / 2);
    out.number(size);
  }
};

// ---- From a function's signature to the kinds of its arguments ----------------------------------

template <class Parameters>
struct KindsOfParameters;

template <class Kind, class... Rest>
using KindThen = decltype(std::tuple_cat(
    std::declval<std::tuple<Kind>>(),
    std::declval<typename KindsOfParameters<std::tuple<Rest...>>::Kinds>()));

template <>
struct KindsOfParameters<std::tuple<>> {
  using Kinds = std::tuple<>;
};

// NOLINTBEGIN(bugprone-macro-parentheses): types
#define QZSVGGEN_KIND(kind, ...)                               \
  struct KindsOfParameters<std::tuple<__VA_ARGS__, Rest...>> { \
    using Kinds = KindThen<kind, Rest...>;                     \
  };
template <class Integer, class... Rest>
QZSVGGEN_KIND(Number<Integer>, Integer)
template <class... Rest>
QZSVGGEN_KIND(Rectangle, const RECT*)
template <class... Rest>
QZSVGGEN_KIND(Point, const POINT*)
template <class... Rest>
QZSVGGEN_KIND(Points, const POINT*, uint32_t)
template <class... Rest>
QZSVGGEN_KIND(TypedPoints, const POINT*, const uint8_t*, uint32_t)
template <class... Rest>
QZSVGGEN_KIND(Advances, const int32_t*)
template <class Count, class... Rest>
QZSVGGEN_KIND(Text<Count>, const SVG_Char*, Count)
template <class... Rest>
QZSVGGEN_KIND(Picture, const uint8_t*, int32_t)
template <class... Rest>
QZSVGGEN_KIND(FieldData, const void*, int32_t)
#undef QZSVGGEN_KIND
// NOLINTEND(bugprone-macro-parentheses)

// The arguments of a function as kinds. Three signatures do not tell all.
template <auto function>
struct KindsOf : KindsOfParameters<Parameters<function>> {
};
template <>
struct KindsOf<SVG_GetVersion> : KindsOfParameters<std::tuple<>> {};
template <>
struct KindsOf<SVG_Close> : KindsOfParameters<std::tuple<>> {};
template <>
struct KindsOf<SVG_BeginSignatureField> {
  using Kinds = std::tuple<Rectangle, Text<int32_t>, InfoData>;
};

template <auto function>
using Values = typename KindsOf<function>::Kinds;

template <class Kind>
inline constexpr std::size_t parameterCount =
    std::tuple_size_v<decltype(std::declval<const Kind&>().parameters())>;

// Calls use(std::type_identity<Kind>, the C parameters of that kind...) for each kind.
template <class Kinds, std::size_t kind = 0, std::size_t first = 0, class Use, class Parameters>
void forEachKind(const Parameters& parameters, Use use) {
  if constexpr (kind < std::tuple_size_v<Kinds>) {
    using Kind = std::tuple_element_t<kind, Kinds>;
    [&]<std::size_t... i>(std::index_sequence<i...>) {
      use(std::type_identity<Kind>(), std::get<first + i>(parameters)...);
    }
    (std::make_index_sequence<parameterCount<Kind>>());
    forEachKind<Kinds, kind + 1, first + parameterCount<Kind>>(parameters, use);
  }
}

// Of SVG_BeginFormField's parameters: the bytes of its data that are read at least.
template <class Writer, auto function, class... P>
void noteLeastBytes(Writer& out, Function<function>, P... parameters) {
  if constexpr (isSame<function, SVG_BeginFormField>)
    out.leastBytes = std::get<0>(std::tuple(parameters...)) == SVG_FIELD_DATE ? 8 : 0;
}

}  // namespace qz::tools
