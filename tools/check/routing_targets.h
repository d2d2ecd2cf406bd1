// The fixed paths at which a start puts the routing tables.
#ifndef QUARRY_TOOLS_CHECK_ROUTING_TARGETS_H_
#define QUARRY_TOOLS_CHECK_ROUTING_TARGETS_H_

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/check/agent_advice.h"

namespace quarry::tool {

// A routing table that another user owns.
struct ForeignTable {
  std::string path;
  uid_t owner;
};

// The first one. A start as root replaces it all the same, and then its owner cannot any more.
std::optional<ForeignTable> FindForeignTable();

// One for each routing table that a start of this user could not replace.
std::vector<Advice> AdviceForRoutingTargets();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_ROUTING_TARGETS_H_
