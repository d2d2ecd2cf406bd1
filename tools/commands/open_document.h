// Opens the documents that commands work on, and finds what a command line names in them.
#ifndef QUARRY_TOOLS_COMMANDS_OPEN_DOCUMENT_H_
#define QUARRY_TOOLS_COMMANDS_OPEN_DOCUMENT_H_

#include <string>
#include <vector>

#include "settings/document.h"
#include "settings/snapshot.h"

namespace quarry::tool {

// A text that has been read already, to be edited or compared. Throws settings::Error, with all
// errors that check finds, when it is not valid.
settings::Document OpenDocument(const std::string& file, std::string text);

// Reads the file, or standard input for "-". Throws settings::Error, also when it cannot be read.
settings::Document OpenDocument(const std::string& file);

// The same as a snapshot, for what is only looked up.
settings::Snapshot OpenSnapshot(const std::string& file, const std::string& text);
settings::Snapshot OpenSnapshot(const std::string& file);

// Throws ToolError (kExitNo) when there is no such section, with the hint, or one that suggests
// names.
const settings::Section& RequireSection(const std::string& section,
                                        const settings::Snapshot& snapshot,
                                        const std::string& hint = "");

// Throws ToolError (kExitNo), which suggests names, when there is no such option.
const settings::Option& RequireOption(const std::string& section, const std::string& option,
                                      const settings::Snapshot& snapshot);

// The section's options in the order of their names.
std::vector<const settings::Option*> SortedOptions(const settings::Section& section);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_OPEN_DOCUMENT_H_
