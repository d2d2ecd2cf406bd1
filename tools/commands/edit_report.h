// What an edit does, for scripts: one line a change.
#ifndef QUARRY_TOOLS_COMMANDS_EDIT_REPORT_H_
#define QUARRY_TOOLS_COMMANDS_EDIT_REPORT_H_

#include <string>

#include "settings/verified_edit.h"

namespace quarry::tool {

// The changes that make the edited text of `before`, with the line numbers of the edited text, and
// of `before` for what was removed:
//
//   changed FILE:45: [Log] level: notice -> debug
//   changed FILE:45: [Log] level -> verbosity
//   changed FILE:44: [Log] -> [Logging]
//   added FILE:46: [Log] lines: 1000
//   removed FILE:3: # Less at night.
//
// or "unchanged FILE". Secrets are masked unless `show_secrets`, all else is escaped.
std::string EditReport(const std::string& file, const std::string& before,
                       const settings::EditedText& edited, bool show_secrets);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_EDIT_REPORT_H_
