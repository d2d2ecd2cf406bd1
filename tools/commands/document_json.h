#ifndef QUARRY_TOOLS_COMMANDS_DOCUMENT_JSON_H_
#define QUARRY_TOOLS_COMMANDS_DOCUMENT_JSON_H_

#include <list>
#include <string>

#include "settings/document.h"
#include "tools/terminal/json.h"

namespace quarry::tool {

// The named sections of the document as JSON, with everything in them; with `with_lines` also, for
// every option, the number of the line that counts.
std::string DocumentJson(const std::list<std::string>& sections, bool with_lines,
                         settings::Document* document);

// The same as one of several documents: without the number of the schema.
nlohmann::ordered_json DocumentEntry(const std::list<std::string>& sections, bool with_lines,
                                     settings::Document* document);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_DOCUMENT_JSON_H_
