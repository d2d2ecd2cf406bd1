// Edits of a text that were read back with the library: what it makes of the
// edited text is what it made of the text before, but for what was asked.
#ifndef QUARRY_TOOLS_CHECKED_EDIT_H_
#define QUARRY_TOOLS_CHECKED_EDIT_H_

#include <cstddef>
#include <string>
#include <vector>

#include "tools/edit_text.h"
#include "tools/model_file.h"

namespace quarry::tool {

enum class Comments { kCompared, kIgnored };

// Whether two models hold the same sections, in the same order, and the same
// options and values, with their comments if these count. Of a section beyond
// the first `old_sections` the comment does not count.
bool IsSameModel(ModelFile* left, ModelFile* right, Comments comments, std::size_t old_sections);

struct EditedText {
  std::string before;
  TextEdit edit;
  std::string text;
};

// Both throw ToolError: when the text of `file` is not valid, when a name or
// value would not be read back (DemandReadable), when the option to remove is
// absent, and when the edited text reads otherwise than it should.
EditedText WithSettings(const std::string& file, std::string text,
                        const std::vector<Setting>& settings);
EditedText WithoutOption(const std::string& file, std::string text, const std::string& section,
                         const std::string& option, bool with_comment);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECKED_EDIT_H_
