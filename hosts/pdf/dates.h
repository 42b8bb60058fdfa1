// The dates of form fields, written by patterns such as "dd.mm.yyyy" and "mmm d, yyyy".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qz::pdf {

// The pattern in a field's format script, if that formats a date.
std::optional<std::string> datePattern(const std::string& script);

// The days from 30 December 1899 to a date, or 0 when the text is none of that pattern.
int64_t daysOfDate(std::string_view text, std::string_view pattern);

}  // namespace qz::pdf
