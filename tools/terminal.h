// What standard output and standard error are connected to.
#ifndef QUARRY_TOOLS_TERMINAL_H_
#define QUARRY_TOOLS_TERMINAL_H_

namespace quarry::tool {

bool IsStandardOutputTerminal();

// A terminal whose lines can be written anew, which "dumb" ones cannot.
bool IsStandardErrorTerminal();

// On such a terminal, unless NO_COLOR is set to anything.
bool ColoursOnStandardError();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_H_
