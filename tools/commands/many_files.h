// What commands share that ask many files the same.
#ifndef QUARRY_TOOLS_COMMANDS_MANY_FILES_H_
#define QUARRY_TOOLS_COMMANDS_MANY_FILES_H_

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "settings/error.h"
#include "tools/terminal/progress.h"

namespace quarry::tool {

// Throws ToolError (kExitUsage) for an empty name, which an unset variable of a script becomes.
void RequireNames(const std::vector<std::string>& names);

// Throws ToolError (kExitUsage) when two of the files are standard input, which can be read once.
void RequireOneStandardInput(const std::vector<std::string>& files);

// Calls `handle` for every file in order. A settings::Error that it throws does not end the run:
// its messages are written to standard error, and `add_failure` is called. Returns how many files
// failed. The progress line is gone at the end.
std::size_t ForEachFile(
    const std::vector<std::string>& files, Progress* progress,
    const std::function<void(const std::string& file)>& handle,
    const std::function<void(const std::string& file, const settings::Error& error)>& add_failure);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_MANY_FILES_H_
