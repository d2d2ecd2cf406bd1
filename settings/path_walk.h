#ifndef QUARRY_SETTINGS_PATH_WALK_H_
#define QUARRY_SETTINGS_PATH_WALK_H_

#include <string>

#include "platform/local/file_descriptor.h"

namespace quarry::settings {

// Opens the folder that the path `file` leads to, and returns the name of the file there, which may
// be absent and is no link when it is looked up; "." when the path leads to a folder. Links are
// followed, except one that another user placed in a sticky folder that everyone can write to, as
// /tmp is: there it must belong to the caller or to the folder's owner. The system has this rule
// too, where the sysctl fs.protected_symlinks is on. Throws Error.
std::string OpenFolderOf(const std::string& file, platform::FileDescriptor* folder);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_PATH_WALK_H_
