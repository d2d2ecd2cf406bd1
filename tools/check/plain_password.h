// Texts as they are shown unless the user asks for secrets: without passwords in plain text. Sealed
// ones stay. What counts as a password is decided by FindPassword (tools/check/password_line.h).
#ifndef QUARRY_TOOLS_CHECK_PLAIN_PASSWORD_H_
#define QUARRY_TOOLS_CHECK_PLAIN_PASSWORD_H_

#include <string>
#include <string_view>

#include "settings/line_edits.h"

namespace quarry::tool {

struct RedactedChange {
  std::string text;
  settings::TextEdit edit;
};

// A text and an edit of it, with the rest of every line masked from a plain password on; comments
// are no exception. The text has as many lines as before. The value of an option that is renamed is
// a password when either name says so.
RedactedChange RedactChange(std::string_view text, settings::TextEdit edit);

// The option's value, masked from a plain password on.
std::string RedactedValue(const std::string& option, const std::string& value);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_PLAIN_PASSWORD_H_
