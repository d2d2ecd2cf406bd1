#ifndef QUARRY_TOOLS_CHECK_AGENT_CHECKS_H_
#define QUARRY_TOOLS_CHECK_AGENT_CHECKS_H_

#include <string>
#include <vector>

#include "settings/finding.h"

namespace quarry::tool {

// What an agent's start would fail at, or would read otherwise than it is written, in a valid text.
// In no order.
std::vector<settings::Finding> CheckForAgent(const std::string& text, const std::string& file);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_AGENT_CHECKS_H_
