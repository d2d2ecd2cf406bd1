// An edit as a unified diff, the form that diff -u prints and patch takes.
#ifndef QUARRY_TOOLS_UNIFIED_DIFF_H_
#define QUARRY_TOOLS_UNIFIED_DIFF_H_

#include <string>
#include <string_view>

#include "tools/edit_text.h"

namespace quarry::tool {

// Empty when the edit is. `file` is the name for both sides.
std::string UnifiedDiff(const std::string& file, std::string_view text, const TextEdit& edit);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_UNIFIED_DIFF_H_
