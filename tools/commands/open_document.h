// Opens the documents that commands work on, and finds what a command line names in them.
#ifndef QUARRY_TOOLS_COMMANDS_OPEN_DOCUMENT_H_
#define QUARRY_TOOLS_COMMANDS_OPEN_DOCUMENT_H_

#include <string>

#include "settings/document.h"
#include "settings/snapshot.h"

namespace quarry::tool {

// Reads and parses the file, or standard input for "-". Throws settings::Error: when it cannot be
// read, and, with all errors that check finds, when it is not valid.
settings::Document OpenDocument(const std::string& file);

// The same for a text that has been read already.
settings::Document OpenDocument(const std::string& file, std::string text);

// The same as a snapshot, for commands that only read values and their lines.
settings::Snapshot OpenSnapshot(const std::string& file, const std::string& text);

// Throws ToolError (kExitNo) when there is no such section, with the hint, or one that suggests
// names.
void RequireSection(const std::string& section, settings::Document* document,
                    const std::string& hint = "");

// Returns the option's value. Throws ToolError (kExitNo), which suggests names, when there is no
// such option.
const std::string& RequireOption(const std::string& section, const std::string& option,
                                 settings::Document* document);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_OPEN_DOCUMENT_H_
