// Names that somebody who typed another one may have meant.
#ifndef QUARRY_TOOLS_NEAREST_H_
#define QUARRY_TOOLS_NEAREST_H_

#include <list>
#include <string>
#include <vector>

namespace quarry::tool {

// At most three of `names`, the nearest first; none when all are far. Letter
// case does not count.
std::vector<std::string> NearestNames(const std::string& wanted,
                                      const std::list<std::string>& names);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_NEAREST_H_
