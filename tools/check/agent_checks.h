#ifndef QUARRY_TOOLS_CHECK_AGENT_CHECKS_H_
#define QUARRY_TOOLS_CHECK_AGENT_CHECKS_H_

#include <string>
#include <vector>

#include "settings/finding.h"

namespace quarry::tool {

// Findings about settings of a valid text that an agent's start rejects, or parses differently than
// they are written. In no order. With `no_key`, checks only the form of the password and leaves the
// key's folder and file alone.
std::vector<settings::Finding> CheckForAgent(const std::string& text, const std::string& file,
                                             bool no_key);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_AGENT_CHECKS_H_
