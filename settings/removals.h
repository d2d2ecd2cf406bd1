// The edits that remove options and sections from a valid text; on request with the comment lines
// directly above each line of the option, or each header of the section.
#ifndef QUARRY_SETTINGS_REMOVALS_H_
#define QUARRY_SETTINGS_REMOVALS_H_

#include <string>
#include <string_view>

#include "settings/line_edits.h"

namespace quarry::settings {

// Removes every line of the option.
TextEdit UnsetOption(std::string_view text, const std::string& section, const std::string& option,
                     bool with_comment);

// Removes every part of the section, from its header to its last option, with what is between them.
// Where blank lines were on both sides of a part, or one end of the text was, one blank line goes
// with it.
TextEdit UnsetSection(std::string_view text, const std::string& section, bool with_comment);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_REMOVALS_H_
