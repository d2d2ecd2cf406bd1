// Where a command that edits takes its text from, and what becomes of the edited text.
#ifndef QUARRY_TOOLS_COMMANDS_EDIT_TARGET_H_
#define QUARRY_TOOLS_COMMANDS_EDIT_TARGET_H_

#include <functional>
#include <string>

#include "settings/file_replacement.h"
#include "settings/verified_edit.h"

namespace quarry::tool {

struct EditTarget {
  std::string file;           // "-": standard input, edited to standard output
  bool create = false;        // the file may be absent
  bool dry_run = false;       // shows the edit on standard output and does not make it
  bool show_secrets = false;  // ... with passwords that are in plain text
};

using EditFunction = std::function<settings::EditedText(const std::string& text)>;

// Calls `edit` with the target's text and writes the result. Throws settings::Error.
settings::EditedText MakeEdit(const EditTarget& target, const EditFunction& edit);

// Opens a file to be replaced. While it waits for another edit a message says so; an absent file
// gets a hint how to create it. Throws settings::Error.
settings::FileReplacement OpenForEdit(const std::string& file,
                                      settings::FileReplacement::Options options);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_EDIT_TARGET_H_
