#ifndef QUARRY_TOOLS_TERMINAL_VERSION_H_
#define QUARRY_TOOLS_TERMINAL_VERSION_H_

#include <string>

namespace quarry::tool {

std::string ProgramVersion();

// The program's version, the library files that this process has loaded, and the version of
// libsodium; a line each.
std::string VersionText();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_VERSION_H_
