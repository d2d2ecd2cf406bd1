// What standard output and standard error are connected to.
#ifndef QUARRY_TOOLS_TERMINAL_H_
#define QUARRY_TOOLS_TERMINAL_H_

namespace quarry::tool {

bool IsStandardOutputTerminal();

// On a terminal other than "dumb", unless NO_COLOR is set to anything.
bool ColoursOnStandardError();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_H_
