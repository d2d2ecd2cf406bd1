// What standard output and standard error are connected to.
#ifndef QUARRY_TOOLS_TERMINAL_TERMINAL_H_
#define QUARRY_TOOLS_TERMINAL_TERMINAL_H_

#include <cstddef>

namespace quarry::tool {

bool IsStandardOutputTerminal();

// Whether standard error is a terminal that can rewrite a line, which "dumb" ones cannot.
bool IsStandardErrorTerminal();

// Whether standard error is such a terminal and NO_COLOR is unset or empty.
bool SupportsColours();

// The width of standard error when it is a terminal and knows it, else 80.
std::size_t StandardErrorColumns();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_TERMINAL_H_
