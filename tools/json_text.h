// The JSON that commands print.
#ifndef QUARRY_TOOLS_JSON_TEXT_H_
#define QUARRY_TOOLS_JSON_TEXT_H_

#include <nlohmann/json.hpp>
#include <string>

namespace quarry::tool {

// Adds "key": text. JSON holds UTF-8 only: in any other text the broken bytes
// become U+FFFD, and "key_base64" beside it holds the text exactly.
void AddText(nlohmann::ordered_json* object, const std::string& key, const std::string& text);

// The document in one line, with a line feed.
std::string JsonText(const nlohmann::ordered_json& document);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_JSON_TEXT_H_
