// The one way in which paths are followed where others may have placed links.
#ifndef QUARRY_SETTINGS_PATH_WALK_H_
#define QUARRY_SETTINGS_PATH_WALK_H_

#include <sys/stat.h>

#include <functional>
#include <string>

#include "platform/local/file_descriptor.h"

namespace quarry::settings {

// Called with each name on a path, other than "..": the open folder that contains it, and the
// status of what has the name there, which may be a link; null when there is nothing. Returning
// false ends the walk.
using NameVisitor = std::function<bool(int folder, const struct stat* entry)>;

// Opens the folder that the path `file` leads to, and returns the name of the file there, which may
// be absent and is no link when it is looked up; "." when the path leads to a folder. Links are
// followed, except one that another user placed in a sticky folder that everyone can write to, as
// /tmp is: there it must belong to the caller or to the folder's owner. The system has this rule
// too, where the sysctl fs.protected_symlinks is on. Throws Error.
std::string OpenFolderOf(const std::string& file, platform::FileDescriptor* folder);

// Throws Error when the path has a NUL byte, where the system would end it and find another file.
void RequireNoNul(const std::string& file);

// Follows the path `file` in the same way, from "/" even when it is relative, without opening what
// it leads to. Throws Error.
void VisitNames(const std::string& file, const NameVisitor& visit);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_PATH_WALK_H_
