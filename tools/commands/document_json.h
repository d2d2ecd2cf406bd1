#ifndef QUARRY_TOOLS_COMMANDS_DOCUMENT_JSON_H_
#define QUARRY_TOOLS_COMMANDS_DOCUMENT_JSON_H_

#include <optional>
#include <string>

#include "settings/snapshot.h"
#include "tools/terminal/json.h"

namespace quarry::tool {

// The text's sections, or one of them, as JSON, with everything in them; with `with_lines` also,
// for every option, the number of the line that counts.
std::string DocumentJson(const settings::Snapshot& snapshot, bool with_lines,
                         const std::optional<std::string>& section = std::nullopt);

// The same as one of several documents: without the number of the schema.
nlohmann::ordered_json DocumentEntry(const settings::Snapshot& snapshot, bool with_lines,
                                     const std::optional<std::string>& section = std::nullopt);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_DOCUMENT_JSON_H_
