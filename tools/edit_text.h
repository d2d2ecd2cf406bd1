// Edits of a valid text that leave every line alone that they need not touch.
// An edit is worked out first, as what becomes of which lines; then it is
// applied, or shown.
#ifndef QUARRY_TOOLS_EDIT_TEXT_H_
#define QUARRY_TOOLS_EDIT_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quarry::tool {

// From line `line` on (1 is the first one) `removed` lines are replaced by
// `added` ones, which are without line feeds. What comes to stand at the end of
// the text lacks a line feed when the text lacked it.
struct LineEdit {
  std::size_t line = 1;
  std::size_t removed = 0;
  std::vector<std::string> added;
};

// In order of lines; the lines of two edits do not overlap.
using TextEdit = std::vector<LineEdit>;

std::string Applied(std::string_view text, const TextEdit& edit);

struct Setting {
  std::string section;
  std::string option;
  std::string value;
};

// Throws ToolError (kExitNo) with the reason when a text with this setting
// would not give it back to a program that reads it.
void DemandReadable(const Setting& setting);

// The options are set, each at the line that counts; one that is new comes
// after the last option of its section's last part, a new section at the end of
// the text. An option that has the value already makes no edit. The settings
// are readable and no two set the same option.
TextEdit SetOptions(std::string_view text, const std::vector<Setting>& settings);

// Every line of the option goes; with it, when asked, the comment lines
// directly above each.
TextEdit UnsetOption(std::string_view text, const std::string& section, const std::string& option,
                     bool with_comment);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_EDIT_TEXT_H_
