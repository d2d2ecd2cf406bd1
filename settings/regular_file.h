#ifndef QUARRY_SETTINGS_REGULAR_FILE_H_
#define QUARRY_SETTINGS_REGULAR_FILE_H_

#include <sys/stat.h>

#include <string>

#include "platform/local/file_descriptor.h"

namespace quarry::settings {

// Whether two descriptions are of one file, whatever its state.
bool IsSameFile(const struct stat& left, const struct stat& right);

// What OpenRegularFile returns for anything else than a regular file.
inline constexpr int kNotRegular = -1;

// Opens the file `entry` of the open folder with `access`, O_RDONLY or O_RDWR, if it is a regular
// one. Anything else, links included, is not opened at all, because some devices act when they are.
// Returns 0, kNotRegular or an errno value; `*file` is closed unless that is 0.
int OpenRegularFile(int folder, const std::string& entry, int access,
                    platform::FileDescriptor* file);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_REGULAR_FILE_H_
