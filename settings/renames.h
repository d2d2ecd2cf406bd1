// The edits that rename sections and options of a valid text: they change the name at every line
// where it is. The new name round-trips (settings/setting.h) and is not in use.
#ifndef QUARRY_SETTINGS_RENAMES_H_
#define QUARRY_SETTINGS_RENAMES_H_

#include <string>
#include <string_view>

#include "settings/line_edits.h"

namespace quarry::settings {

TextEdit RenameSection(std::string_view text, const std::string& section,
                       const std::string& new_name);

TextEdit RenameOption(std::string_view text, const std::string& section, const std::string& option,
                      const std::string& new_name);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_RENAMES_H_
