// What an agent start would make of a valid file, without making one.
#ifndef QUARRY_TOOLS_CHECK_AGENT_H_
#define QUARRY_TOOLS_CHECK_AGENT_H_

#include <string>
#include <vector>

#include "tools/check_text.h"

namespace quarry::tool {

// Errors are what a start would fail at: settings that are absent, a password
// or key that cannot be used. Warnings: options beside the settings that a
// start does not know, a number that it would not take as it is written. The
// text must be valid. Findings point into `text`.
std::vector<Finding> CheckAgent(const std::string& text, const std::string& file);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_AGENT_H_
