// Checks of a text: every line that the grammar refuses, and what is valid but probably not meant.
#ifndef QUARRY_SETTINGS_TEXT_CHECKS_H_
#define QUARRY_SETTINGS_TEXT_CHECKS_H_

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/finding.h"

namespace quarry::settings {

struct CheckOptions {
  // The file's name as hints that contain a command give it.
  std::string file_in_commands = "FILE";
  // Whether a line may hold a secret, which no message or hint may quote then.
  std::function<bool(const ScannedLine&)> holds_secret = [](const ScannedLine&) { return false; };
};

// Returns every finding in `text`, in order of lines. There is an error exactly when the library
// refuses the text, and the first error is on the line where a load stops.
std::vector<Finding> CheckText(std::string_view text, const CheckOptions& options = {});

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_TEXT_CHECKS_H_
