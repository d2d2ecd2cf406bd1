#ifndef QUARRY_TOOLS_COMMANDS_KEY_FOLDER_H_
#define QUARRY_TOOLS_COMMANDS_KEY_FOLDER_H_

#include <string>

#include "tools/terminal/errors.h"

namespace quarry::tool {

// The path of the key file in a folder.
std::string KeyFileIn(const std::string& folder);

// Throws ToolError when a user other than root and the caller could exchange the key file in the
// folder, with `status` and a remedy that repeats the command: "keygen" or "seal".
void RequireSafeKeyFolder(const std::string& folder, const std::string& command, ExitStatus status);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_KEY_FOLDER_H_
