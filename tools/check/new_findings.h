// What an edit brings: the findings about the new text that the old one did not have.
#ifndef QUARRY_TOOLS_CHECK_NEW_FINDINGS_H_
#define QUARRY_TOOLS_CHECK_NEW_FINDINGS_H_

#include <string>
#include <vector>

#include "tools/check/check.h"

namespace quarry::tool {

// Checks both texts as CheckForProgram does and returns the findings about `after` that are not
// about `before` as well. Two findings are the same when their rule is and they are about the same
// option, wherever its line is and whatever its value. Those about no option are told apart by
// their messages if they are errors, else by their sections. `after` must live as long as the
// findings.
std::vector<settings::Finding> NewFindings(const std::string& before, const std::string& after,
                                           const std::string& file, Program program);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_NEW_FINDINGS_H_
