#include "settings/temporary_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "settings/error.h"
#include "settings/regular_file.h"

namespace quarry::settings {

namespace {

// For what cannot be removed from the temporary file's place.
std::string HintForObstacle(int error) {
  if (error == EISDIR) return "no edit leaves a folder there: remove it";
  if (error != EPERM) return "";
  return "another user put it there; remove it as root, and keep the file in a folder of its user "
         "alone";
}

}  // namespace

TemporaryFile::TemporaryFile(int folder, const std::string& entry, mode_t mode,
                             const std::string& name, LockTimer* timer)
    : folder_(folder), entry_(entry), temporary_('.' + entry + ".quarry-new"), name_(name) {
  if (Create(mode, timer)) return;
  // An abandoned one was removed, for which no time is required.
  while (!Create(mode, timer)) timer->RequireTime(name_);
}

TemporaryFile::~TemporaryFile() {
  if (!published_) unlinkat(folder_, temporary_.c_str(), 0);
}

// Returns false when it is to be tried again.
bool TemporaryFile::Create(mode_t mode, LockTimer* timer) {
  file_.Reset(openat(folder_, temporary_.c_str(),
                     O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
  if (file_.get() != -1) return LockNew(timer);
  if (errno != EEXIST) {
    throw SystemError("create " + temporary_ + " beside " + name_, name_, errno,
                      errno == EACCES ? "an edit replaces the file by a new one, for which its "
                                        "folder must be writable"
                                      : "");
  }
  RemoveAbandoned(timer);
  return false;
}

// Between the creation of a file and its lock another program may lock it, find it abandoned and
// remove it; so it is ours only if it is in place once it is locked.
bool TemporaryFile::LockNew(LockTimer* timer) {
  try {
    LockForEdit(file_.get(), name_, timer);
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
    return IsSameFile(given, in_place);
  }
  if (errno == ENOENT) return false;
  throw SystemError("find " + temporary_ + " beside " + name_, name_, errno);
}

// Waits for the process that holds it, if there is one.
void TemporaryFile::RemoveAbandoned(LockTimer* timer) {
  platform::FileDescriptor found(-1);
  const int error = OpenRegularFile(folder_, temporary_, O_RDONLY, &found);
  if (error == ENOENT) return;
  if (error == 0) {
    LockForEdit(found.get(), name_, timer);
    if (!IsInPlace(found.get())) return;
  }
  // A file that we cannot open is not one of ours.
  if (unlinkat(folder_, temporary_.c_str(), 0) != 0 && errno != ENOENT) {
    throw SystemError("remove " + temporary_ + " beside " + name_, name_, errno,
                      HintForObstacle(errno));
  }
}

void TemporaryFile::Publish(bool replaces) {
  const unsigned flags = replaces ? 0 : RENAME_NOREPLACE;
  published_ = renameat2(folder_, temporary_.c_str(), folder_, entry_.c_str(), flags) == 0;
  // Some file systems do not support the flag.
  if (!published_ && errno == EINVAL) {
    published_ = renameat(folder_, temporary_.c_str(), folder_, entry_.c_str()) == 0;
  }
  if (published_) return;
  throw SystemError("save " + name_, name_, errno,
                    errno == EBUSY ? "a file that is mounted alone, as into a container, cannot be "
                                     "replaced; edit it where it comes from, or mount its folder"
                                   : "");
}

}  // namespace quarry::settings
