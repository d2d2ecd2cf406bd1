// What check does with a text, for all commands that check one.
#ifndef QUARRY_TOOLS_CHECK_AS_H_
#define QUARRY_TOOLS_CHECK_AS_H_

#include <string>
#include <vector>

#include "tools/check_text.h"

namespace quarry::tool {

// The findings of CheckText and, when there is no error, those about what the
// program `as` takes of it: "agent", "client" or none. In order of lines.
std::vector<Finding> CheckAs(const std::string& text, const std::string& file,
                             const std::string& as);

bool HasErrors(const std::vector<Finding>& findings);

// To standard error, with colours where they are fit.
void WriteFindings(const std::vector<Finding>& findings, const std::string& file);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_AS_H_
