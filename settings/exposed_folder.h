// Whether another user could exchange what a path leads to.
#ifndef QUARRY_SETTINGS_EXPOSED_FOLDER_H_
#define QUARRY_SETTINGS_EXPOSED_FOLDER_H_

#include <sys/types.h>

#include <optional>
#include <string>

namespace quarry::settings {

// A folder in which a user other than root and the caller could exchange an entry.
struct ExposedFolder {
  std::string path;            // absolute, without links
  std::optional<uid_t> owner;  // who could; absent when it is all who have write permission
  mode_t permissions;
};

// Looks at every folder that the system passes on the way from "/" to `file`, links included. Each
// must belong to root or to the caller, and neither its group nor others may have write permission.
// Only a sticky folder, such as /tmp, may be writable, when the entry on the way belongs to root or
// the caller: nobody else can rename or remove that. Returns the first folder that breaks the rule.
//
// The file itself is not looked at, and may be absent. Throws Error when a folder is absent.
std::optional<ExposedFolder> FindExposedFolder(const std::string& file);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_EXPOSED_FOLDER_H_
