// What a client would make of a valid file.
#ifndef QUARRY_TOOLS_CHECK_CLIENT_H_
#define QUARRY_TOOLS_CHECK_CLIENT_H_

#include <string>
#include <vector>

#include "tools/check_text.h"

namespace quarry::tool {

// Warns of an ingest mode that is neither "on" nor "off". Findings point into
// `text`.
std::vector<Finding> CheckClient(const std::string& text);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_CLIENT_H_
