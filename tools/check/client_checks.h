#ifndef QUARRY_TOOLS_CHECK_CLIENT_CHECKS_H_
#define QUARRY_TOOLS_CHECK_CLIENT_CHECKS_H_

#include <string>
#include <vector>

#include "settings/finding.h"

namespace quarry::tool {

// Findings about settings of a valid text that a client does not use, or parses differently than
// they are written; an absent one is mentioned on demand, for a client starts without it. In no
// order.
std::vector<settings::Finding> CheckForClient(const std::string& text, bool mention_absent);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_CLIENT_CHECKS_H_
