// Runs all checks that apply to a text.
#ifndef QUARRY_TOOLS_CHECK_CHECK_H_
#define QUARRY_TOOLS_CHECK_CHECK_H_

#include <cstddef>
#include <string>
#include <vector>

#include "settings/finding.h"

namespace quarry::tool {

// The program whose requirements are checked as well.
enum class Program { kNone, kAgent, kClient };

struct ProgramCheckOptions {
  bool mention_absent = false;  // settings that a client may do without
  bool no_key = false;          // leave an agent's key alone; see CheckForAgent
};

// Returns the findings about the text and, when none of them is an error, those about what the
// program reads from it; in order of lines. `file` is its name for hints. No field but
// line_text reveals a secret's text or length; RedactedLine (tools/check/finding_text.h) returns
// the line without it.
std::vector<settings::Finding> CheckForProgram(const std::string& text, const std::string& file,
                                               Program program,
                                               const ProgramCheckOptions& options = {});

// Hides the finding's line from the offset `secret` on. A finding that reaches into the secret then
// ends where its mask does.
void HideSecret(settings::Finding* finding, std::size_t secret);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_CHECK_H_
