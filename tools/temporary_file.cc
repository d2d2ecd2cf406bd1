#include "tools/temporary_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "tools/display.h"
#include "tools/errors.h"
#include "tools/file_lock.h"

namespace quarry::tool {

// Between making a file and locking it another program may lock it, take it for
// abandoned and remove it; so it is ours only if it is in place once locked.
TemporaryFile::TemporaryFile(int folder, const std::string& entry, mode_t mode,
                             const std::string& name)
    : folder_(folder), entry_(entry), temporary_('.' + entry + ".quarry-new"), name_(name) {
  for (bool is_ours = false; !is_ours;) {
    file_.Reset(openat(folder_, temporary_.c_str(),
                       O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (file_.get() != -1) {
      is_ours = LockNew();
    } else if (errno == EEXIST) {
      RemoveAbandoned();
    } else {
      throw SystemError("create", Shown(temporary_) + " beside " + name_, errno,
                        errno == EACCES ? "an edit puts a new file into the place of the "
                                          "old one; for that its folder must be writable"
                                        : "");
    }
  }
}

TemporaryFile::~TemporaryFile() {
  if (!published_) unlinkat(folder_, temporary_.c_str(), 0);
}

bool TemporaryFile::LockNew() {
  try {
    LockForEdit(file_.get(), name_);
    return IsInPlace(file_.get());
  } catch (...) {
    unlinkat(folder_, temporary_.c_str(), 0);
    throw;
  }
}

bool TemporaryFile::IsInPlace(int file) const {
  struct stat given {
  }, in_place{};
  if (fstat(file, &given) == 0 &&
      fstatat(folder_, temporary_.c_str(), &in_place, AT_SYMLINK_NOFOLLOW) == 0) {
    return given.st_dev == in_place.st_dev && given.st_ino == in_place.st_ino;
  }
  if (errno == ENOENT) return false;
  throw SystemError("find", Shown(temporary_) + " beside " + name_, errno);
}

// Waits for the end of the program that has it, if one does.
void TemporaryFile::RemoveAbandoned() {
  const platform::FileDescriptor found(openat(
      folder_, temporary_.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (found.get() == -1 && errno == ENOENT) return;
  if (found.get() != -1) {
    LockForEdit(found.get(), name_);
    if (!IsInPlace(found.get())) return;
  }
  // What cannot be opened none of us has made.
  if (unlinkat(folder_, temporary_.c_str(), 0) != 0 && errno != ENOENT) {
    throw SystemError("remove", Shown(temporary_) + " beside " + name_, errno);
  }
}

void TemporaryFile::Publish(bool replaces) {
  const unsigned flags = replaces ? 0 : RENAME_NOREPLACE;
  published_ = renameat2(folder_, temporary_.c_str(), folder_, entry_.c_str(), flags) == 0;
  // Not every file system knows the flag.
  if (!published_ && errno == EINVAL) {
    published_ = renameat(folder_, temporary_.c_str(), folder_, entry_.c_str()) == 0;
  }
  if (!published_) throw SystemError("save", name_, errno);
}

}  // namespace quarry::tool
