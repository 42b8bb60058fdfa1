// Reads the arguments of a recorded call from JSON.
#pragma once

#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "kinds.h"
#include "recording.h"

namespace qz::tools {

// Walks over a call's arguments. Every failure names the argument that it is about.
class ArgumentReader {
 public:
  ArgumentReader(const nlohmann::json& call, Files& files) : call_(call), files_(files) {}

  // Refuses a call that has another number of arguments.
  void expectCount(std::size_t count) const;
  // The next argument, or nothing behind the last.
  const nlohmann::json& next();
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

  // Whether the call is about a form field that is a date.
  bool isDate() const { return call_[1] == SVG_FIELD_DATE; }

  // Code units of the latest text: what advances must match.
  std::size_t textLength = 0;

 private:
  const nlohmann::json& call_;
  Files& files_;
  std::size_t index_ = 0;
};

template <class Integer>
Integer ArgumentReader::integer(const nlohmann::json& value) const {
  const auto refuse = [&](const std::string& number) {
    fail(number + " is not in " + std::to_string(std::numeric_limits<Integer>::min()) + " to " +
         std::to_string(std::numeric_limits<Integer>::max()));
  };
  if (!value.is_number_integer()) {
    if (value.is_number() && std::abs(value.get<double>()) > 9e18) refuse(value.dump());
    fail(std::string("must be a whole number, not ") +
         (value.is_number() ? value.dump() : value.type_name()));
  }
  if (value.is_number_unsigned() ? !std::in_range<Integer>(value.get<uint64_t>())
                                 : !std::in_range<Integer>(value.get<int64_t>()))
    refuse(value.dump());
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

template <class Integer>
Number<Integer>::Number(ArgumentReader& reader) : value(reader.integer<Integer>(reader.next())) {}

template <class Count>
Text<Count>::Text(ArgumentReader& reader) : Units(reader) {
  reader.count<Count>(count, units.size());
}

template <class... Kind>
std::tuple<Kind...> readKinds(ArgumentReader& reader, std::type_identity<std::tuple<Kind...>>) {
  return std::tuple<Kind...>{Kind(reader)...};  // braces: from left to right
}

}  // namespace qz::tools
