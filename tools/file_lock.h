#ifndef QUARRY_TOOLS_FILE_LOCK_H_
#define QUARRY_TOOLS_FILE_LOCK_H_

#include <string>

namespace quarry::tool {

// Locks the open file against other edits until it is closed, by whatever end
// of this process. Waits up to ten seconds, and says so after the first. Throws
// ToolError; `name` is that of the file in its message.
void LockForEdit(int file, const std::string& name);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_FILE_LOCK_H_
