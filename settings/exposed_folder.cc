#include "settings/exposed_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <list>
#include <system_error>

#include "settings/error.h"

namespace quarry::settings {

namespace {

using std::filesystem::path;

constexpr int kMostLinks = 40;  // as many as Linux follows
constexpr mode_t kPermissions = S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO;

bool IsTrusted(uid_t owner) { return owner == 0 || owner == geteuid(); }

// Follows a path as the system does, one entry at a time.
class PathWalk {
 public:
  explicit PathWalk(const std::string& file) : file_(file) {
    std::error_code error;
    Prepend(std::filesystem::absolute(file, error));
    if (error) Fail(error.value());
  }

  std::optional<ExposedFolder> Find();

 private:
  void Prepend(const path& names);
  std::optional<ExposedFolder> CheckFolder() const;
  void Enter();
  [[noreturn]] void Fail(int error_number) const {
    throw SystemError("follow " + file_, file_, error_number);
  }

  const std::string& file_;
  path folder_;            // absolute, without links
  std::list<path> rest_;   // the names that are still to be followed from there
  path entry_;             // the next one, in `folder_`
  struct stat status_ {};  // of `entry_`; has no type when it is absent
  int links_ = 0;
};

std::optional<ExposedFolder> PathWalk::Find() {
  while (!rest_.empty()) {
    const path name = rest_.front();
    rest_.pop_front();
    if (name == "..") {
      folder_ = folder_.parent_path();
      continue;
    }
    entry_ = folder_ / name;
    status_ = {};
    if (lstat(entry_.c_str(), &status_) != 0 && errno != ENOENT) Fail(errno);
    if (auto exposed = CheckFolder()) return exposed;
    Enter();
  }
  return std::nullopt;
}

void PathWalk::Prepend(const path& names) {
  if (names.is_absolute()) folder_ = "/";
  auto place = rest_.begin();
  for (const path& name : names.relative_path()) {
    if (!name.empty() && name != ".") rest_.insert(place, name);
  }
}

std::optional<ExposedFolder> PathWalk::CheckFolder() const {
  struct stat folder {};
  if (lstat(folder_.c_str(), &folder) != 0) Fail(errno);
  ExposedFolder exposed = {folder_.native(), std::nullopt, folder.st_mode & kPermissions};
  if (!IsTrusted(folder.st_uid)) {
    exposed.owner = folder.st_uid;
    return exposed;
  }
  const bool is_present = (status_.st_mode & S_IFMT) != 0;
  const bool kept = (folder.st_mode & S_ISVTX) != 0 && is_present && IsTrusted(status_.st_uid);
  const bool writable = (folder.st_mode & (S_IWGRP | S_IWOTH)) != 0;
  if (!writable || kept) return std::nullopt;
  return exposed;
}

void PathWalk::Enter() {
  if (!S_ISLNK(status_.st_mode)) {
    folder_ = entry_;
    return;
  }
  if (++links_ > kMostLinks) Fail(ELOOP);
  std::error_code error;
  const path target = std::filesystem::read_symlink(entry_, error);
  if (error) Fail(error.value());
  Prepend(target);
}

}  // namespace

std::optional<ExposedFolder> FindExposedFolder(const std::string& file) {
  return PathWalk(file).Find();
}

}  // namespace quarry::settings
