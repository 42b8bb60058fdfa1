// The functions of the C interface, each named once, and what the compiler knows of them.
#pragma once

#include <qzsvggen/qzsvggen.h>
#if defined(_WIN32)
#include <windows.h>
#endif

#include <string_view>
#include <tuple>
#include <type_traits>

// X(name, count of parameters behind the handle) for each function that draws or sets state. Not in
// it are those that are treated by themselves: SVG_Create, SVG_Delete, SVG_GetVersion, SVG_Close.
#define QZSVGGEN_FUNCTIONS(X)        \
  X(SVG_SetFill, 4)                  \
  X(SVG_SetStroke, 5)                \
  X(SVG_ClearStroke, 0)              \
  X(SVG_BeginInvertPainting, 0)      \
  X(SVG_EndInvertPainting, 0)        \
  X(SVG_InvertPath, 3)               \
  X(SVG_InvertRectangle, 1)          \
  X(SVG_DrawLine, 2)                 \
  X(SVG_DrawRectangle, 1)            \
  X(SVG_DrawRoundedRectangle, 4)     \
  X(SVG_DrawPolyline, 2)             \
  X(SVG_DrawPolygon, 2)              \
  X(SVG_DrawPath, 3)                 \
  X(SVG_SetFont, 5)                  \
  X(SVG_ClearFont, 0)                \
  X(SVG_DrawText, 5)                 \
  X(SVG_BeginCharacterBlock, 0)      \
  X(SVG_EndCharacterBlock, 0)        \
  X(SVG_BeginCharacter, 1)           \
  X(SVG_EndCharacter, 0)             \
  X(SVG_SetCharacterReference, 2)    \
  X(SVG_DrawImage, 5)                \
  X(SVG_BeginClippingRegion, 1)      \
  X(SVG_AddClippingRegion, 1)        \
  X(SVG_ExcludeClippingRegion, 1)    \
  X(SVG_EndClippingRegion, 0)        \
  X(SVG_GetCurrentClippingRegion, 0) \
  X(SVG_SetCurrentClippingRegion, 1) \
  X(SVG_BeginFormField, 8)           \
  X(SVG_EndFormField, 0)             \
  X(SVG_BeginLink, 3)                \
  X(SVG_EndLink, 0)                  \
  X(SVG_SetDocumentTarget, 3)        \
  X(SVG_BeginSignatureField, 5)      \
  X(SVG_EndSignatureField, 0)

namespace qz::tools {

// Stands for a function where consumers of calls are overloaded.
template <auto function>
struct Function {};

template <auto function, auto other>
inline constexpr bool isSame = std::is_same_v<Function<function>, Function<other>>;

template <class... Parameters>
std::tuple<Parameters...> parametersOf(int32_t(QZSVGGEN_CALL*)(SvgGenerator*, Parameters...));

// The types of the parameters behind the handle, and one of them.
template <auto function>
using Parameters = decltype(parametersOf(function));
template <auto function, std::size_t index>
using Parameter = std::tuple_element_t<index, Parameters<function>>;

template <auto function>
inline constexpr std::string_view functionName{};
template <>
inline constexpr std::string_view functionName<SVG_GetVersion> = "SVG_GetVersion";
template <>
inline constexpr std::string_view functionName<SVG_Close> = "SVG_Close";

// NOLINTBEGIN(bugprone-macro-parentheses): arguments of templates
#define QZSVGGEN_NAME(name, arity)                              \
  template <>                                                   \
  inline constexpr std::string_view functionName<name> = #name; \
  static_assert(std::tuple_size_v<Parameters<name>> == (arity), #name);
QZSVGGEN_FUNCTIONS(QZSVGGEN_NAME)
#undef QZSVGGEN_NAME
// NOLINTEND(bugprone-macro-parentheses)

}  // namespace qz::tools
