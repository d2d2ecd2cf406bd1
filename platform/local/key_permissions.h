// Who may use a key file besides its owner. Not installed.
#ifndef QUARRY_PLATFORM_LOCAL_KEY_PERMISSIONS_H_
#define QUARRY_PLATFORM_LOCAL_KEY_PERMISSIONS_H_

#include <sys/stat.h>

#include "platform/cr_runtime.h"

namespace quarry::platform {

// Judges an open file by its owner, mode and POSIX access control list. The file must be owned by
// the caller or by root (by any user when the caller is root), and no other user may read or write
// it. The exceptions are secrets that are mounted for a service, owned by root and used by another
// caller, which may be read
//   - by the file's group, which is one of the caller's (as with a pod's fsGroup); or
//   - by the caller alone, whom the access control list names, when the mode is at most 0440 (as
//     with LoadCredential= of systemd).
//
// Returns kDecryptDone, kDecryptKeyTooOpen, or kDecryptNoKeyFile (errno says why the list cannot be
// read). Nothing throws.
DecryptResult CheckKeyPermissions(int file, const struct stat& status);

}  // namespace quarry::platform

#endif  // QUARRY_PLATFORM_LOCAL_KEY_PERMISSIONS_H_
