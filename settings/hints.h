// Remedies for lines of other formats.
#ifndef QUARRY_SETTINGS_HINTS_H_
#define QUARRY_SETTINGS_HINTS_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace quarry::settings {

inline constexpr char kCommentHint[] = "put the comment on a line of its own";
inline constexpr char kContinuationHint[] =
    "there are no continuation lines: write the value on a single line";

// For text after a section header; `line` is the whole line, and `text` what comes after the
// header.
const char* TextAfterHeaderHint(std::string_view line, std::string_view text);

// Whether carriage returns end lines within the line, as old systems have it.
bool HasLoneCarriageReturn(std::string_view line);

// For an option line without "=". The hint repeats parts of the line only when `may_quote`.
std::string MissingEqualsHint(std::string_view line, bool may_quote);

// "write "NAME = VALUE"" for a line that has a colon at `colon` instead.
std::string ColonHint(std::string_view line, std::size_t colon, bool may_quote);

// Where a colon with a blank after it is, as in "name: value"; npos when there is none.
std::size_t FindColon(std::string_view text);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_HINTS_H_
