#ifndef QUARRY_TOOLS_FILE_ATTRIBUTES_H_
#define QUARRY_TOOLS_FILE_ATTRIBUTES_H_

#include <string>

namespace quarry::tool {

// Gives the open file `to` the owner, group, mode and extended attributes, with
// them the access control list, of the open file `from`. Throws ToolError when
// any of them cannot be kept; `name` is that of the file in its message.
void KeepAttributes(int from, int to, const std::string& name);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_FILE_ATTRIBUTES_H_
