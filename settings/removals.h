// The edits that remove options and sections.
#ifndef QUARRY_SETTINGS_REMOVALS_H_
#define QUARRY_SETTINGS_REMOVALS_H_

#include <string>
#include <string_view>

#include "settings/line_edits.h"

namespace quarry::settings {

// Removes every line of the option from a valid text, on request with the comment lines directly
// above each.
TextEdit UnsetOption(std::string_view text, const std::string& section, const std::string& option,
                     bool with_comment);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_REMOVALS_H_
