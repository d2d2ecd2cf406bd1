// The edit that sets options.
#ifndef QUARRY_SETTINGS_SET_OPTIONS_H_
#define QUARRY_SETTINGS_SET_OPTIONS_H_

#include <string_view>
#include <vector>

#include "settings/line_edits.h"
#include "settings/setting.h"

namespace quarry::settings {

// Sets the options of a valid text, each in the last line that sets it. A new option is added after
// the last option of the last part of its section, a new section at the end of the text. An option
// that has the value already causes no edit. The settings round-trip, and no two set the same
// option.
TextEdit SetOptions(std::string_view text, const std::vector<Setting>& settings);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_SET_OPTIONS_H_
