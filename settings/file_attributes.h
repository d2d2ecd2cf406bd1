#ifndef QUARRY_SETTINGS_FILE_ATTRIBUTES_H_
#define QUARRY_SETTINGS_FILE_ATTRIBUTES_H_

#include <sys/types.h>

#include <string>

namespace quarry::settings {

// Gives the open file `to` the owner, group, mode and extended attributes of the open file `from`,
// and with them its access control list. Throws Error when one of them cannot be kept; `name` is
// that of the file for its message.
void KeepAttributes(int from, int to, const std::string& name);

// Gives the open file `to`, which only its owner can use so far, the mode of the open file `from`
// less `mask`. Others than the owner get nothing when the groups differ, or when a file or the open
// folder of `to` has an access control list, because then somebody might read `to` who may not read
// `from`. Throws Error.
void CopyAccess(int from, int to, int folder, mode_t mask, const std::string& name);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_FILE_ATTRIBUTES_H_
