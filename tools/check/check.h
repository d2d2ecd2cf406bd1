// Runs all checks that apply to a text.
#ifndef QUARRY_TOOLS_CHECK_CHECK_H_
#define QUARRY_TOOLS_CHECK_CHECK_H_

#include <string>
#include <vector>

#include "settings/finding.h"

namespace quarry::tool {

// The program whose needs are checked, too.
enum class Program { kNone, kAgent, kClient };

// Returns the findings about the text and, when none of them is an error, those about what the
// program reads from it; in order of lines. `file` is its name for hints. Of a password neither
// text nor length shows in a finding's message, hint, column and length; its line_text is the line
// as it is (tools/check/finding_text.h).
std::vector<settings::Finding> CheckForProgram(const std::string& text, const std::string& file,
                                               Program program);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_CHECK_H_
