#ifndef QUARRY_TOOLS_CHECK_AGENT_CHECKS_H_
#define QUARRY_TOOLS_CHECK_AGENT_CHECKS_H_

#include <string>
#include <vector>

#include "settings/finding.h"

namespace quarry::tool {

// Findings about settings of a valid text that an agent's start rejects, or parses differently than
// they are written. In no order.
std::vector<settings::Finding> CheckForAgent(const std::string& text, const std::string& file);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_AGENT_CHECKS_H_
