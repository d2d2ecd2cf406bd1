#include "settings/file_replacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "settings/error.h"
#include "settings/file_attributes.h"
#include "settings/file_reading.h"
#include "settings/path_walk.h"
#include "settings/regular_file.h"

namespace quarry::settings {

namespace {

// Every change of a file, of its text or its attributes, changes this time, and nobody can set it.
bool IsSameVersion(const struct stat& left, const struct stat& right) {
  return IsSameFile(left, right) && left.st_ctim.tv_sec == right.st_ctim.tv_sec &&
         left.st_ctim.tv_nsec == right.st_ctim.tv_nsec;
}

}  // namespace

FileReplacement::FileReplacement(const std::string& file, Options options)
    : options_(std::move(options)), timer_(options_.max_wait, options_.on_wait), name_(file) {
  entry_ = OpenFolderOf(name_, &folder_);
  const bool found = OpenOld();
  if (!found && !options_.new_mode) {
    throw Error(ErrorKind::kNotFound, name_,
                "cannot open " + name_ + ": No such file or directory");
  }
  if (!found && !options_.read_only) PrepareNew();
  timer_.Pause();
}

// Concurrent creators wait for our temporary file, and then find what we created.
void FileReplacement::PrepareNew() {
  struct stat status {};
  Guard();
  for (;; timer_.RequireTime(name_)) {
    new_.emplace(folder_.get(), entry_, *options_.new_mode, name_, &timer_);
    if (!FindInPlace(&status)) return;
    new_.reset();
    if (OpenOld()) break;
  }
  guard_.reset();
}

void FileReplacement::Guard() {
  if (options_.guard) guard_ = options_.guard();
}

// Returns false when there is no such file.
bool FileReplacement::OpenOld() {
  struct stat in_place {};
  for (;; timer_.RequireTime(name_)) {
    const int error =
        OpenRegularFile(folder_.get(), entry_, options_.read_only ? O_RDONLY : O_RDWR, &old_);
    if (error == ENOENT) return false;
    if (error == kNotRegular) {
      throw Error(ErrorKind::kFailed, name_, name_ + " is not a regular file");
    }
    if (error != 0) {
      throw SystemError("open " + name_ + (options_.read_only ? "" : " for writing"), name_, error);
    }
    if (!options_.read_only) LockForEdit(old_.get(), name_, &timer_);
    if (fstat(old_.get(), &status_) != 0) throw SystemError("read " + name_, name_, errno);
    // The edit that was waited for may have put another file in its place.
    if (FindInPlace(&in_place) && IsSameFile(status_, in_place)) break;
  }
  RequireOneName();
  return true;
}

// Only ENOENT means that a file is absent.
bool FileReplacement::FindInPlace(struct stat* status) const {
  if (fstatat(folder_.get(), entry_.c_str(), status, AT_SYMLINK_NOFOLLOW) == 0) {
    return true;
  }
  if (errno != ENOENT) throw SystemError("find " + name_, name_, errno);
  return false;
}

void FileReplacement::RequireOneName() const {
  if (status_.st_nlink <= 1) return;
  throw Error(ErrorKind::kFailed, name_,
              name_ + " has " + std::to_string(status_.st_nlink) +
                  " names (hard links), which an edit would separate",
              "make them symbolic links, or copies");
}

const std::string& FileReplacement::text() {
  if (!text_) text_ = exists() ? ReadAll(old_.get(), name_) : "";
  return *text_;
}

void FileReplacement::CopyAccessOf(int source, mode_t mask) {
  if (!exists()) CopyAccess(source, new_->get(), folder_.get(), mask, name_);
}

void FileReplacement::Replace(std::string_view text) {
  if (exists() && text == this->text()) return;
  if (exists()) {
    Guard();
    timer_.Resume();
    new_.emplace(folder_.get(), entry_, kPrivateMode, name_, &timer_);
  }
  WriteAndPublish(text);
  if (fsync(folder_.get()) == 0) return;
  throw Error(ErrorKind::kFailed, name_,
              "the edit of " + name_ + " is in place, but its folder cannot be flushed: " +
                  std::generic_category().message(errno));
}

void FileReplacement::WriteAndPublish(std::string_view text) {
  if (!platform::WriteAll(new_->get(), text.data(), text.size())) {
    throw SystemError("save " + name_, name_, errno);
  }
  if (exists()) KeepAttributes(old_.get(), new_->get(), name_);
  if (fsync(new_->get()) != 0) throw SystemError("save " + name_, name_, errno);
  // Who cannot open our temporary file, or finds a planted one, may remove ours by its name.
  if (!new_->IsOurs() || !IsUntouched()) {
    throw Error(ErrorKind::kFailed, name_, "another program changed " + name_ + " during this edit",
                "nothing was written; do it again");
  }
  new_->Publish(exists());
}

// Whether the file is as it was when it was locked. Some programs change files without a lock.
bool FileReplacement::IsUntouched() const {
  struct stat now {};
  const bool present = FindInPlace(&now);
  return exists() ? present && IsSameVersion(now, status_) : !present;
}

}  // namespace quarry::settings
