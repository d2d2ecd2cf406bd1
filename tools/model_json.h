#ifndef QUARRY_TOOLS_MODEL_JSON_H_
#define QUARRY_TOOLS_MODEL_JSON_H_

#include <list>
#include <string>

#include "tools/model_file.h"

namespace quarry::tool {

// The named sections of the file as JSON, with all that stands in them; with
// `with_lines` also the number of the line that counts of every option.
std::string ModelJson(const std::list<std::string>& sections, bool with_lines, ModelFile* model);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_MODEL_JSON_H_
