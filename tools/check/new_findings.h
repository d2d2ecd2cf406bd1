// What an edit brings: the findings about the edited text that the old one did not have.
#ifndef QUARRY_TOOLS_CHECK_NEW_FINDINGS_H_
#define QUARRY_TOOLS_CHECK_NEW_FINDINGS_H_

#include <string>
#include <vector>

#include "settings/verified_edit.h"
#include "tools/check/check.h"

namespace quarry::tool {

// Checks both texts as CheckForProgram does and returns the findings about the edited one that are
// not about `before` as well. Two findings are the same when their rule is and they are about the
// same line, wherever it is and whatever the edit made of it. Errors that are not about an option,
// such as that one is absent, are told apart by their messages. `edited` must live as long as the
// findings.
std::vector<settings::Finding> NewFindings(const std::string& before,
                                           const settings::EditedText& edited,
                                           const std::string& file, Program program);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_NEW_FINDINGS_H_
