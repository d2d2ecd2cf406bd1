// Reads a command's input, and writes its output.
#ifndef QUARRY_TOOLS_TERMINAL_STANDARD_STREAMS_H_
#define QUARRY_TOOLS_TERMINAL_STANDARD_STREAMS_H_

#include <string>

namespace quarry::tool {

// Makes sure that no file that is opened later gets the number of a standard stream that the caller
// closed; using such a stream still fails.
void ReserveStandardStreams();

// Throws ToolError for an empty name, which an unset variable of a script becomes.
void RequireName(const std::string& name);

// The name of an input for messages: "<stdin>" for "-", else the name itself.
std::string InputName(const std::string& file);

// The whole content of the file, or of standard input for "-"; pipes are allowed. Throws
// settings::Error.
std::string ReadInput(const std::string& file);

// Writes a command's whole output to standard output and closes it. Throws settings::Error when not
// all of it was written.
void WriteStandardOutput(const std::string& text);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_STANDARD_STREAMS_H_
