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

struct Setting {
  std::string section;
  std::string option;
  std::string value;
};

// Throws Error (kRefused), with the reason, when the setting would not read back unchanged from a
// text that contains it.
void RequireRoundTrip(const Setting& setting);

// Sets the options of a valid text, each in the last line that sets it. A new option is added after
// the last option of the last block of its section, a new section at the end of the text. An option
// that has the value already causes no edit. The settings round-trip, and no two set the same
// option.
TextEdit SetOptions(std::string_view text, const std::vector<Setting>& settings);

// Removes every line of the option from a valid text, on request with the comment lines directly
// above each.
TextEdit UnsetOption(std::string_view text, const std::string& section, const std::string& option,
                     bool with_comment);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_LINE_EDITS_H_
