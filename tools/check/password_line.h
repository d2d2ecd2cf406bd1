#ifndef QUARRY_TOOLS_CHECK_PASSWORD_LINE_H_
#define QUARRY_TOOLS_CHECK_PASSWORD_LINE_H_

#include <cstddef>
#include <string_view>

namespace quarry::tool {

// Returns the offset of the password in a line that names the agent's password, even in a malformed
// line or misspelled; else npos.
std::size_t FindPassword(std::string_view line);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_PASSWORD_LINE_H_
