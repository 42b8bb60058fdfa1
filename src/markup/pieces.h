// The pieces that markup is made of: literals, short ASCII text, numbers, and what has members like
// these. maxSize() is an upper bound of a piece's length; put() writes it and returns its end.
#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "markup/decimal.h"

namespace qz {

// How far behind a piece's end writing it may touch the text.
inline constexpr size_t kOverrun = 64;

template <size_t size>
constexpr size_t maxSize(const char (&)[size]) {
  return size - 1;
}
template <size_t size>
char* put(char* out, const char (&literal)[size]) {
  std::memcpy(out, literal, size - 1);
  return out + size - 1;
}

inline size_t maxSize(std::string_view text) { return text.size(); }
inline char* put(char* out, std::string_view text) {
  return out + text.copy(out, text.size());  // not memcpy: empty text may have no place
}

// A character would be taken for its number, so it is none.
template <class Type>
concept Number = std::integral<Type> && !std::same_as<Type, bool> && !std::same_as<Type, char> &&
                 !std::same_as<Type, wchar_t> && !std::same_as<Type, char8_t> &&
                 !std::same_as<Type, char16_t> && !std::same_as<Type, char32_t>;

template <Number Integer>
constexpr size_t maxSize(Integer) {
  return kMaxDecimalSize<Integer>;
}
template <Number Integer>
char* put(char* out, Integer value) {
  static_assert(kDecimalOverrun <= kOverrun);
  return writeDecimal(out, value);
}

// Further kinds of pieces have both as members.
template <class Type>
concept Piece = requires(const Type& piece, char* out) {
  { piece.maxSize() } -> std::same_as<size_t>;
  { piece.put(out) } -> std::same_as<char*>;
};
template <Piece Type>
size_t maxSize(const Type& piece) {
  return piece.maxSize();
}
template <Piece Type>
char* put(char* out, const Type& piece) {
  return piece.put(out);
}

// Writes pieces, one after the other, to where there is room for them and kOverrun behind them.
template <class... Pieces>
char* putAll(char* out, const Pieces&... pieces) {
  const auto putOne = [&out](const auto& piece) {
    [[maybe_unused]] char* const limit = out + maxSize(piece);
    out = put(out, piece);
    assert(out <= limit);
  };
  (putOne(pieces), ...);
  return out;
}

}  // namespace qz
