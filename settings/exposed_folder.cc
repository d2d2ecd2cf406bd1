#include "settings/exposed_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "settings/error.h"
#include "settings/path_walk.h"

namespace quarry::settings {

namespace {

bool IsTrusted(uid_t owner) { return owner == 0 || owner == geteuid(); }

// Whether a user other than root and the caller could exchange `entry`, which may be null, in the
// folder.
bool IsExposed(const struct stat& folder, const struct stat* entry) {
  if (!IsTrusted(folder.st_uid)) return true;
  if ((folder.st_mode & (S_IWGRP | S_IWOTH)) == 0) return false;
  const bool is_kept = entry != nullptr && IsTrusted(entry->st_uid);
  return (folder.st_mode & S_ISVTX) == 0 || !is_kept;
}

// Without a mounted /proc, as the path `file` has it.
std::string PathOf(int folder, const std::string& file) {
  std::error_code error;
  const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(folder), error);
  return error ? std::filesystem::path(file).parent_path() : path;
}

}  // namespace

std::optional<ExposedFolder> FindExposedFolder(const std::string& file) {
  constexpr mode_t kPermissions = S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO;
  std::optional<ExposedFolder> exposed;
  VisitNames(file, [&](int folder, const struct stat* entry) {
    struct stat status {};
    if (fstat(folder, &status) != 0) throw SystemError("open the folder of " + file, file, errno);
    if (!IsExposed(status, entry)) return true;
    exposed = {PathOf(folder, file), std::nullopt, status.st_mode & kPermissions};
    if (!IsTrusted(status.st_uid)) exposed->owner = status.st_uid;
    return false;
  });
  return exposed;
}

}  // namespace quarry::settings
