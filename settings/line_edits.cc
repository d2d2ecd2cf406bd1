#include "settings/line_edits.h"

#include <algorithm>

namespace quarry::settings {

namespace {

// A blank line without its line feed would vanish.
bool EndsInBlankLine(std::string_view text) {
  return text.size() < 2 || text[text.size() - 2] == '\n';
}

}  // namespace

std::string ApplyEdit(std::string_view text, const TextEdit& edit) {
  std::string result;
  result.reserve(text.size() + 1);
  std::string_view rest = text;
  std::size_t line = 1;
  const auto take_line = [&rest, &line] {
    const std::string_view taken = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(taken.size() + 1, rest.size()));
    ++line;
    return taken;
  };
  const auto put_line = [&result](std::string_view whole) { result.append(whole).append(1, '\n'); };
  for (const LineEdit& one : edit) {
    while (line < one.line) put_line(take_line());
    for (std::size_t i = 0; i < one.removed; ++i) take_line();
    for (const std::string& added : one.added) put_line(added);
  }
  result.append(rest);
  const bool unterminated = !text.empty() && text.back() != '\n';
  if (unterminated && rest.empty() && !EndsInBlankLine(result)) {
    result.pop_back();
  }
  return result;
}

}  // namespace quarry::settings
