// What standard output and standard error are connected to.
#ifndef QUARRY_TOOLS_TERMINAL_TERMINAL_H_
#define QUARRY_TOOLS_TERMINAL_TERMINAL_H_

namespace quarry::tool {

bool IsStandardOutputTerminal();

// Whether standard error is a terminal that can rewrite a line, which "dumb" ones cannot.
bool IsStandardErrorTerminal();

// Whether standard error is such a terminal and NO_COLOR is unset or empty.
bool SupportsColours();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_TERMINAL_H_
