// Edits of a text that leave alone every line they need not touch. An edit is computed first, as
// what happens to which lines; then it is applied, or shown.
#ifndef QUARRY_SETTINGS_LINE_EDITS_H_
#define QUARRY_SETTINGS_LINE_EDITS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quarry::settings {

// Replaces `removed` lines from line `line` on (1 is the first one) by the lines `added`, which
// have no line feeds. The line that is the last one afterwards lacks a line feed if the text lacked
// it.
struct LineEdit {
  std::size_t line = 1;
  std::size_t removed = 0;
  std::vector<std::string> added;
};

// In order of lines; the lines of two edits do not overlap.
using TextEdit = std::vector<LineEdit>;

std::string ApplyEdit(std::string_view text, const TextEdit& edit);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_LINE_EDITS_H_
