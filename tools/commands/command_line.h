// The command line: from the words to the command that they ask for.
#ifndef QUARRY_TOOLS_COMMANDS_COMMAND_LINE_H_
#define QUARRY_TOOLS_COMMANDS_COMMAND_LINE_H_

#include <string>
#include <vector>

#include "tools/terminal/errors.h"

namespace quarry::tool {

// Carries out what the words ask for; the program's own name is not among them. Throws
// settings::Error.
ExitStatus RunCommandLine(const std::vector<std::string>& words);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_COMMAND_LINE_H_
