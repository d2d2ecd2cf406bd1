// An edit as a unified diff, as diff -u prints and patch reads it.
#ifndef QUARRY_SETTINGS_UNIFIED_DIFF_H_
#define QUARRY_SETTINGS_UNIFIED_DIFF_H_

#include <string>
#include <string_view>

#include "settings/line_edits.h"

namespace quarry::settings {

// Empty when the edit is. `file` is the name for both sides.
std::string UnifiedDiff(const std::string& file, std::string_view text, const TextEdit& edit);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_UNIFIED_DIFF_H_
