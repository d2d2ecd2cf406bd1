#include "tools/file_edit.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "tools/errors.h"
#include "tools/file_attributes.h"
#include "tools/file_lock.h"
#include "tools/files.h"
#include "tools/signals.h"
#include "tools/temporary_file.h"

namespace quarry::tool {

namespace {

bool IsSameFile(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

// Every change of a file, of its text or of what else belongs to it, changes
// this time, and nobody can set it.
bool IsSameVersion(const struct stat& left, const struct stat& right) {
  return IsSameFile(left, right) && left.st_ctim.tv_sec == right.st_ctim.tv_sec &&
         left.st_ctim.tv_nsec == right.st_ctim.tv_nsec;
}

// "/dev/stdout" names what some other program has opened.
bool IsOpenFile(const std::filesystem::path& folder, const std::filesystem::path& path) {
  const auto in_proc = [](const std::filesystem::path& place) {
    return place.string().compare(0, 6, "/proc/") == 0;
  };
  std::error_code error;
  return in_proc(folder) || in_proc(std::filesystem::read_symlink(path, error));
}

// The path without links. The file itself may be absent, but then nothing may
// stand in its place.
std::filesystem::path Resolved(const std::string& file) {
  DemandName(file);
  const std::filesystem::path path(file);
  std::error_code error;
  const auto given = path.parent_path();
  const auto folder = std::filesystem::canonical(given.empty() ? "." : given, error);
  if (!error && IsOpenFile(folder, path)) {
    throw ToolError(kExitFailed, ErrorReport(DisplayName(file) + " is no file of its own",
                                             "\"-\" stands for standard input and output"));
  }
  if (!error) {
    auto resolved = std::filesystem::canonical(path, error);
    if (!error) return resolved;
  }
  struct stat status {};
  if (folder.empty()) {
    throw SystemError("open", "the folder of " + DisplayName(file), error.value());
  }
  const bool is_absent = error.value() == ENOENT && path.has_filename();
  if (is_absent && lstat(file.c_str(), &status) == 0) {
    throw ToolError(kExitFailed,
                    ErrorReport(DisplayName(file) + " is a link to a file that does not exist",
                                "make that file, or remove the link"));
  }
  if (is_absent && errno == ENOENT) return folder / path.filename();
  throw SystemError("open", DisplayName(file), error.value());
}

}  // namespace

FileEdit::FileEdit(const std::string& file, std::optional<mode_t> new_mode, Purpose purpose)
    : purpose_(purpose), name_(DisplayName(file)) {
  const std::filesystem::path path = Resolved(file);
  entry_ = path.filename();
  folder_.Reset(open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder_.get() == -1) {
    throw SystemError("open", "the folder of " + name_, errno);
  }
  if (OpenOld()) return;
  if (!new_mode) {
    throw ToolError(kExitFailed, ErrorReport("cannot open " + name_ + ": No such file or directory",
                                             "only quarry-config set --create makes a new file"));
  }
  if (purpose == Purpose::kEdit) PrepareNew(*new_mode);
}

// Others that would make the file too wait for our temporary one, and then find
// what we made.
void FileEdit::PrepareNew(mode_t mode) {
  struct stat status {};
  held_.emplace();
  do {
    new_.emplace(folder_.get(), entry_, mode, name_);
    if (!FindInPlace(&status)) return;
    new_.reset();
  } while (!OpenOld());
  held_.reset();
}

// False when there is no such file.
bool FileEdit::OpenOld() {
  const bool edits = purpose_ == Purpose::kEdit;
  struct stat in_place {};
  do {
    old_.Reset(
        openat(folder_.get(), entry_.c_str(),
               (edits ? O_RDWR : O_RDONLY) | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!exists() && errno == ENOENT) return false;
    if (!exists()) {
      throw SystemError("open", name_ + (edits ? " for writing" : ""), errno);
    }
    if (edits) LockForEdit(old_.get(), name_);
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
  if (fstatat(folder_.get(), entry_.c_str(), status, AT_SYMLINK_NOFOLLOW) == 0) {
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
    throw ToolError(kExitFailed, ErrorReport(name_ + " has " + std::to_string(status_.st_nlink) +
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
  if (exists()) {
    held_.emplace();
    new_.emplace(folder_.get(), entry_, kPrivateMode, name_);
  }
  WriteAndPublish(text);
  if (fsync(folder_.get()) == 0) return;
  throw ToolError(kExitFailed, ErrorReport("the edit of " + name_ +
                                           " is in place, but its folder cannot be flushed: " +
                                           std::generic_category().message(errno)));
}

void FileEdit::WriteAndPublish(std::string_view text) {
  if (!platform::WriteAll(new_->get(), text.data(), text.size())) {
    throw SystemError("save", name_, errno);
  }
  if (exists()) KeepAttributes(old_.get(), new_->get(), name_);
  if (fsync(new_->get()) != 0) throw SystemError("save", name_, errno);
  if (!IsUntouched()) {
    throw ToolError(kExitFailed,
                    ErrorReport("another program changed " + name_ + " during this edit",
                                "nothing was written; do it again"));
  }
  new_->Publish(exists());
}

// Whether the file is as it was locked. Not every program locks what it
// changes.
bool FileEdit::IsUntouched() const {
  struct stat now {};
  const bool present = FindInPlace(&now);
  return exists() ? present && IsSameVersion(now, status_) : !present;
}

}  // namespace quarry::tool
