#include "settings/regular_file.h"

#include <fcntl.h>

#include <cerrno>

namespace quarry::settings {

namespace {

// Opens what the descriptor `found` was opened for with O_PATH; without a mounted /proc, what has
// its name now. Returns 0 or an errno value.
int Reopen(int found, int folder, const std::string& entry, int access,
           platform::FileDescriptor* file, struct stat* opened) {
  // O_NONBLOCK and O_NOCTTY are for what may have taken the name.
  const int flags = access | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const std::string itself = "/proc/self/fd/" + std::to_string(found);
  file->Reset(openat(AT_FDCWD, itself.c_str(), flags));
  if (file->get() == -1 && errno == ENOENT) {
    file->Reset(openat(folder, entry.c_str(), flags | O_NOFOLLOW));
  }
  return file->get() != -1 && fstat(file->get(), opened) == 0 ? 0 : errno;
}

}  // namespace

bool IsSameFile(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

int OpenRegularFile(int folder, const std::string& entry, int access,
                    platform::FileDescriptor* file) {
  file->Reset(-1);
  for (;;) {
    const platform::FileDescriptor found(
        openat(folder, entry.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat looked_at {
    }, opened{};
    if (found.get() == -1 || fstat(found.get(), &looked_at) != 0) return errno;
    if (!S_ISREG(looked_at.st_mode)) return kNotRegular;
    const int error = Reopen(found.get(), folder, entry, access, file, &opened);
    if (error == 0 && IsSameFile(looked_at, opened)) return 0;
    file->Reset(-1);
    if (error != 0) return error;
  }
}

}  // namespace quarry::settings
