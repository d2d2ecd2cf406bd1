// Edits of a document that are read back before they count: a load of the edited text gives what a
// load of the old text gave, except for what was asked.
#ifndef QUARRY_SETTINGS_VERIFIED_EDIT_H_
#define QUARRY_SETTINGS_VERIFIED_EDIT_H_

#include <cstddef>
#include <string>
#include <vector>

#include "settings/document.h"
#include "settings/line_edits.h"
#include "settings/setting.h"

namespace quarry::settings {

// kExtended: a comment of the right document may have more lines above those of the left one.
enum class Comments { kCompared, kExtended, kIgnored };

// Whether two documents have the same sections, in the same order, and the same options and values,
// and the same comments if these are compared. The comments of sections after the first
// `old_sections` are not compared.
bool IsSameModel(Document* left, Document* right, Comments comments, std::size_t old_sections);

struct EditedText {
  TextEdit edit;     // empty when nothing has to change
  std::string text;  // after the edit
};

// Each changes the document's model to the one that the edited text must give, and throws Error
// (kFailed) when it gives another one, which is a fault of this library.

// The settings must be readable (RequireRoundTrip); no two set the same option.
EditedText WithSettings(Document* document, const std::vector<Setting>& settings);

// The option must exist.
EditedText WithoutOption(Document* document, const std::string& section, const std::string& option,
                         bool with_comment);

// The section must exist.
EditedText WithoutSection(Document* document, const std::string& section, bool with_comment);

// What is renamed must exist. Throws Error (kRefused) when the new name would not be read back, or
// is that of another section or option of the section.
EditedText WithSectionRenamed(Document* document, const std::string& section,
                              const std::string& new_name);
EditedText WithOptionRenamed(Document* document, const std::string& section,
                             const std::string& option, const std::string& new_name);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_VERIFIED_EDIT_H_
