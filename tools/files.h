// Reading what a command is given and writing what it answers.
#ifndef QUARRY_TOOLS_FILES_H_
#define QUARRY_TOOLS_FILES_H_

#include <optional>
#include <string>

namespace quarry::tool {

// Sees to it that no file that is opened later takes the number of a standard
// stream that the caller closed; using such a stream still fails.
void ReserveStandardStreams();

// Refuses an empty name, which a variable of a script becomes that is not set.
void DemandName(const std::string& name);

// The name for messages: "<stdin>" for "-", else the name itself, made visible.
std::string DisplayName(const std::string& file);

// The whole content of the file, or of standard input for "-"; a pipe will do.
// Throws ToolError.
std::string ReadInput(const std::string& file);

// The same; nothing when there is no such file. Every other failure is one.
std::optional<std::string> ReadIfPresent(const std::string& file);

// All that an open file gives from here on. Throws ToolError; `name` is that of
// the file in its message.
std::string ReadAll(int descriptor, const std::string& name);

// Writes a command's whole answer to standard output and closes it. Throws
// ToolError when any of it did not get there.
void WriteStandardOutput(const std::string& text);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_FILES_H_
