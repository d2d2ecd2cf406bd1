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

// Throws Error (kRefused), with the reason, when a text with this setting would not give it back to
// a program that reads it.
void RequireReadable(const Setting& setting);

// Sets the options of a valid text, each in the line that counts. A new option comes after the last
// option of its section's last part, a new section at the end of the text. An option that has the
// value already causes no edit. The settings are readable, and no two set the same option.
TextEdit SetOptions(std::string_view text, const std::vector<Setting>& settings);

// Removes every line of the option from a valid text, on request with the comment lines directly
// above each.
TextEdit UnsetOption(std::string_view text, const std::string& section, const std::string& option,
                     bool with_comment);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_LINE_EDITS_H_
