// Words that other programs for configuration files use, and what they are called here: hints for a
// command line that is wrong. Each function returns "" when it knows none.
#ifndef QUARRY_TOOLS_COMMANDS_OTHER_WORDS_H_
#define QUARRY_TOOLS_COMMANDS_OTHER_WORDS_H_

#include <cstddef>
#include <list>
#include <string>
#include <vector>

namespace quarry::tool {

// For a command line that does not begin with a command.
std::string HintForUnknownCommand(const std::vector<std::string>& words);

// For an option that the command does not have; `known` are those that it has.
std::string HintForUnknownOption(const std::string& option, const std::list<std::string>& known);

// For arguments too few, where "SECTION.OPTION" or "OPTION=VALUE" is one of them. `given` begins
// with FILE; `wanted` is the number that the command requires.
std::string HintForJoinedNames(const std::string& command, const std::vector<std::string>& given,
                               std::size_t wanted);

// For arguments too many, where several may be files.
std::string HintForTooMany(const std::string& command);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_OTHER_WORDS_H_
