#include "settings/wide_encoding.h"

#include <algorithm>
#include <cstddef>

namespace quarry::settings {

namespace {

// The first line with more in it than the half of a character.
std::string_view FirstLine(std::string_view text) {
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    if (line.size() > 1) return line;
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return {};
}

// Whether each byte at an odd offset, or each at an even one, is NUL, and no other.
bool IsEverySecondNul(std::string_view line, std::size_t first) {
  for (std::size_t i = 0; i < line.size(); ++i) {
    if ((line[i] == '\0') != (i % 2 == first)) return false;
  }
  return !line.empty();
}

}  // namespace

const char* WideEncodingOf(std::string_view text) {
  const std::string_view mark = text.substr(0, 2);
  if (mark == "\xFF\xFE" || mark == "\xFE\xFF") return "UTF-16";
  const std::string_view line = FirstLine(text);
  // After a line feed that comes first in its character, a line begins with the rest of that.
  const bool is_first_byte = (line.data() - text.data()) % 2 == 0;
  if (IsEverySecondNul(line, 0)) return is_first_byte ? "UTF-16BE" : "UTF-16LE";
  if (IsEverySecondNul(line, 1)) return is_first_byte ? "UTF-16LE" : "UTF-16BE";
  return nullptr;
}

}  // namespace quarry::settings
