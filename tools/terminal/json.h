// The JSON that commands print.
#ifndef QUARRY_TOOLS_TERMINAL_JSON_H_
#define QUARRY_TOOLS_TERMINAL_JSON_H_

#include <nlohmann/json.hpp>
#include <string>

#include "settings/error.h"

namespace quarry::tool {

// Adds "key": text. JSON allows only UTF-8: in other texts each invalid byte becomes U+FFFD, and
// "key_base64" beside it holds the exact text.
void AddText(nlohmann::ordered_json* object, const std::string& key, const std::string& text);

// {"file":..,"error":..}: a file that failed, among those of a command's JSON.
nlohmann::ordered_json FailedFileJson(const std::string& file, const settings::Error& error);

// The document on one line, with a line feed.
std::string JsonText(const nlohmann::ordered_json& document);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_JSON_H_
