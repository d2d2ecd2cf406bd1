// Where a command that edits takes its text from, and what becomes of the edited text.
#ifndef QUARRY_TOOLS_COMMANDS_EDIT_TARGET_H_
#define QUARRY_TOOLS_COMMANDS_EDIT_TARGET_H_

#include <functional>
#include <string>
#include <vector>

#include "settings/file_replacement.h"
#include "settings/verified_edit.h"
#include "tools/commands/command.h"

namespace quarry::tool {

struct EditTarget {
  std::string file;                  // "-": standard input, edited to standard output
  bool create = false;               // the file may be absent
  Program program = Program::kNone;  // for which the edit must bring no error
  bool report = false;               // says on standard output what the edit does (EditReport)
  bool dry_run = false;              // shows the edit on standard output and does not make it
  bool exit_code = false;            // ... and ends with kExitNo when there is something to edit
  bool show_secrets = false;         // ... or reports it, with passwords that are in plain text
};

// The words for all fields but the file and `create`; with `needs`, each needs that option.
void AddEditWords(EditTarget* target, std::vector<Word>* words, const std::string& needs = "");

using EditFunction = std::function<settings::EditedText(const std::string& text)>;

struct MadeEdit {
  settings::EditedText edited;
  ExitStatus status;  // with which the command ends
};

// Calls `edit` with the target's text and writes the result. Throws settings::Error; when the edit
// brings an error, nothing is written.
MadeEdit MakeEdit(const EditTarget& target, const EditFunction& edit);

// Opens a file to be replaced. While it waits for another edit a message says so; an absent file
// gets a hint how to create it. Throws settings::Error.
settings::FileReplacement OpenForEdit(const std::string& file,
                                      settings::FileReplacement::Options options);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_EDIT_TARGET_H_
