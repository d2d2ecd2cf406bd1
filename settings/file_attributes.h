#ifndef QUARRY_SETTINGS_FILE_ATTRIBUTES_H_
#define QUARRY_SETTINGS_FILE_ATTRIBUTES_H_

#include <string>

namespace quarry::settings {

// Gives the open file `to` the owner, group, mode and extended attributes of the open file `from`,
// and with them its access control list. Throws Error when one of them cannot be kept; `name` is
// that of the file for its message.
void KeepAttributes(int from, int to, const std::string& name);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_FILE_ATTRIBUTES_H_
