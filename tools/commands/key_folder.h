#ifndef QUARRY_TOOLS_COMMANDS_KEY_FOLDER_H_
#define QUARRY_TOOLS_COMMANDS_KEY_FOLDER_H_

#include <string>

namespace quarry::tool {

// The path of the key file in a folder.
std::string KeyFileIn(const std::string& folder);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_KEY_FOLDER_H_
