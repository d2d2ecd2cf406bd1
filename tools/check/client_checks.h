#ifndef QUARRY_TOOLS_CHECK_CLIENT_CHECKS_H_
#define QUARRY_TOOLS_CHECK_CLIENT_CHECKS_H_

#include <string>
#include <vector>

#include "settings/finding.h"

namespace quarry::tool {

// Findings about settings of a valid text that a client parses differently than they are written.
std::vector<settings::Finding> CheckForClient(const std::string& text);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_CLIENT_CHECKS_H_
