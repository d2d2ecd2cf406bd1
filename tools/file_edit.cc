#include "tools/file_edit.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "tools/display.h"
#include "tools/errors.h"
#include "tools/file_attributes.h"
#include "tools/file_lock.h"
#include "tools/files.h"
#include "tools/signals.h"

namespace quarry::tool {

namespace {

bool IsSameFile(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool IsSameVersion(const struct stat& left, const struct stat& right) {
  return IsSameFile(left, right) && left.st_size == right.st_size &&
         left.st_mtim.tv_sec == right.st_mtim.tv_sec &&
         left.st_mtim.tv_nsec == right.st_mtim.tv_nsec;
}

// The path without links. The file itself may be absent, but then nothing may
// stand in its place.
std::filesystem::path Resolved(const std::string& file) {
  std::error_code error;
  const std::filesystem::path path(file);
  auto resolved = std::filesystem::canonical(path, error);
  if (!error) return resolved;
  struct stat status {};
  const bool is_absent = error.value() == ENOENT && path.has_filename() &&
                         lstat(file.c_str(), &status) != 0 && errno == ENOENT;
  if (is_absent) {
    const auto folder = path.parent_path();
    const auto parent =
        std::filesystem::canonical(folder.empty() ? "." : folder, error);
    if (!error) return parent / path.filename();
  }
  throw SystemError("open", DisplayName(file), error.value());
}

}  // namespace

ToolError AbsentError(const std::string& name) {
  return {kExitFailed,
          ErrorReport("cannot open " + name + ": No such file or directory",
                      "quarry-config set --create makes a new file")};
}

FileEdit::FileEdit(const std::string& file, WhenAbsent when_absent)
    : when_absent_(when_absent), name_(DisplayName(file)) {
  const std::filesystem::path path = Resolved(file);
  entry_ = path.filename();
  temporary_ = '.' + entry_ + ".quarry-new";
  folder_.Reset(
      open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder_.get() == -1)
    throw SystemError("open", "the folder of " + name_, errno);
  if (OpenOld()) return;
  if (when_absent == WhenAbsent::kRefuse) throw AbsentError(name_);
  // There is no file to lock against others that would create it.
  LockForEdit(folder_.get(), name_);
  if (OpenOld()) (void)flock(folder_.get(), LOCK_UN);
}

// False when there is no such file.
bool FileEdit::OpenOld() {
  struct stat in_place {};
  do {
    old_.Reset(openat(folder_.get(), entry_.c_str(),
                      O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!exists() && errno == ENOENT) return false;
    if (!exists()) throw SystemError("open", name_ + " for writing", errno);
    LockForEdit(old_.get(), name_);
    if (fstat(old_.get(), &status_) != 0) {
      throw SystemError("read", name_, errno);
    }
    // The edit that was waited for has put another file in its place.
  } while (!FindInPlace(&in_place) || !IsSameFile(status_, in_place));
  DemandEditable();
  return true;
}

// Only ENOENT means that a file is absent.
bool FileEdit::FindInPlace(struct stat* status) const {
  if (fstatat(folder_.get(), entry_.c_str(), status, AT_SYMLINK_NOFOLLOW) ==
      0) {
    return true;
  }
  if (errno != ENOENT) throw SystemError("find", name_, errno);
  return false;
}

void FileEdit::DemandEditable() const {
  if (!S_ISREG(status_.st_mode)) {
    throw ToolError(kExitFailed, ErrorReport(name_ + " is not a regular file"));
  }
  if (status_.st_nlink > 1) {
    throw ToolError(
        kExitFailed,
        ErrorReport(name_ + " has " + std::to_string(status_.st_nlink) +
                        " names (hard links), which an edit would part",
                    "make them symbolic links, or copies"));
  }
}

const std::string& FileEdit::text() {
  if (!text_) text_ = exists() ? ReadAll(old_.get(), name_) : "";
  return *text_;
}

void FileEdit::Replace(std::string_view text) {
  if (exists() && text == this->text()) return;
  const SignalsHeld held;
  // One that a killed edit left; nobody else works on it while we hold the
  // lock.
  if (unlinkat(folder_.get(), temporary_.c_str(), 0) != 0 && errno != ENOENT) {
    throw SystemError("remove", Shown(temporary_) + " beside " + name_, errno);
  }
  WriteTemporary(text);
  if (fsync(folder_.get()) == 0) return;
  throw ToolError(
      kExitFailed,
      ErrorReport("the edit of " + name_ +
                  " is in place, but its folder cannot be flushed: " +
                  std::generic_category().message(errno)));
}

void FileEdit::WriteTemporary(std::string_view text) {
  constexpr mode_t kPrivate = S_IRUSR | S_IWUSR;
  constexpr mode_t kUsual = kPrivate | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  const bool is_new = !exists() && when_absent_ == WhenAbsent::kCreate;
  platform::FileDescriptor file(
      openat(folder_.get(), temporary_.c_str(),
             O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
             is_new ? kUsual : kPrivate));
  if (file.get() == -1) {
    throw SystemError("create", Shown(temporary_) + " beside " + name_, errno);
  }
  try {
    if (!platform::WriteAll(file.get(), text.data(), text.size())) {
      throw SystemError("save", name_, errno);
    }
    if (exists()) KeepAttributes(old_.get(), file.get(), name_);
    if (fsync(file.get()) != 0 || !file.Close())
      throw SystemError("save", name_, errno);
    Publish();
  } catch (...) {
    unlinkat(folder_.get(), temporary_.c_str(), 0);
    throw;
  }
}

// The temporary file takes the name.
void FileEdit::Publish() {
  if (!IsUntouched()) {
    throw ToolError(
        kExitFailed,
        ErrorReport("another program changed " + name_ + " during this edit",
                    "nothing was written; do it again"));
  }
  const unsigned flags = exists() ? 0 : RENAME_NOREPLACE;
  if (renameat2(folder_.get(), temporary_.c_str(), folder_.get(),
                entry_.c_str(), flags) == 0) {
    return;
  }
  // Not every file system knows the flag.
  if (errno == EINVAL && renameat(folder_.get(), temporary_.c_str(),
                                  folder_.get(), entry_.c_str()) == 0) {
    return;
  }
  throw SystemError("save", name_, errno);
}

// Whether the file is as it was read. Not every program locks what it changes.
bool FileEdit::IsUntouched() const {
  struct stat now {};
  const bool present = FindInPlace(&now);
  return exists() ? present && IsSameVersion(now, status_) : !present;
}

}  // namespace quarry::tool
