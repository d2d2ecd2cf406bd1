#include "settings/file_attributes.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <vector>

#include "settings/error.h"

namespace quarry::settings {

namespace {

// What `read`, which is flistxattr or fgetxattr, returns; nullopt with errno on failure.
template <typename Read>
std::optional<std::string> ReadWhole(Read read) {
  for (;;) {
    const ssize_t size = read(nullptr, 0);
    if (size == -1) return std::nullopt;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    const ssize_t count = read(bytes.data(), bytes.size());
    if (count == -1 && errno == ERANGE) continue;  // it grew meanwhile
    if (count == -1) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
  }
}

std::optional<std::string> Attribute(int file, const std::string& name) {
  return ReadWhole(
      [&](char* bytes, std::size_t size) { return fgetxattr(file, name.c_str(), bytes, size); });
}

class AttributeKeeper {
 public:
  AttributeKeeper(int from, int to, const std::string& name) : from_(from), to_(to), name_(name) {}

  void KeepOwnerOf(const struct stat& status);
  void KeepExtended();
  void KeepModeOf(const struct stat& status);
  bool HasAccessList(int file) const;

 private:
  [[noreturn]] void Refuse(const std::string& what, const std::string& hint = "") const {
    throw SystemError("keep " + what + " of " + name_, name_, errno, hint);
  }
  std::vector<std::string> NamesOf(int file) const;

  const int from_;
  const int to_;
  const std::string& name_;
};

void AttributeKeeper::KeepOwnerOf(const struct stat& status) {
  struct stat now {};
  if (fstat(to_, &now) != 0) Refuse("the owner");
  if (now.st_uid == status.st_uid && now.st_gid == status.st_gid) return;
  if (fchown(to_, status.st_uid, status.st_gid) == 0) return;
  Refuse(now.st_uid != status.st_uid ? "the owner (user ID " + std::to_string(status.st_uid) + ')'
                                     : "the group (group ID " + std::to_string(status.st_gid) + ')',
         geteuid() == 0 ? "" : "edit it as root");
}

// A folder may give new files attributes that the old file lacks.
void AttributeKeeper::KeepExtended() {
  const std::vector<std::string> wanted = NamesOf(from_);
  for (const std::string& name : wanted) {
    const auto value = Attribute(from_, name);
    if (!value) Refuse("the attribute " + name);
    if (Attribute(to_, name) == value) continue;
    if (fsetxattr(to_, name.c_str(), value->data(), value->size(), 0) != 0) {
      Refuse("the attribute " + name);
    }
  }
  for (const std::string& name : NamesOf(to_)) {
    if (std::find(wanted.begin(), wanted.end(), name) != wanted.end()) continue;
    if (fremovexattr(to_, name.c_str()) != 0) {
      Refuse("the lack of the attribute " + name);
    }
  }
}

void AttributeKeeper::KeepModeOf(const struct stat& status) {
  constexpr mode_t kPermissions = 07777;
  if (fchmod(to_, status.st_mode & kPermissions) != 0) {
    Refuse("the mode", HintForLackOf("modes", errno));
  }
}

// Such as system.posix_acl_access; the lists of other systems have names of this kind.
bool AttributeKeeper::HasAccessList(int file) const {
  const std::vector<std::string> names = NamesOf(file);
  return std::any_of(names.begin(), names.end(),
                     [](const std::string& name) { return name.compare(0, 7, "system.") == 0; });
}

std::vector<std::string> AttributeKeeper::NamesOf(int file) const {
  const auto list =
      ReadWhole([file](char* bytes, std::size_t size) { return flistxattr(file, bytes, size); });
  if (!list && errno == ENOTSUP) return {};
  if (!list) Refuse("the attributes");
  std::vector<std::string> names;
  for (std::size_t at = 0; at < list->size(); at += names.back().size() + 1) {
    names.emplace_back(list->c_str() + at);  // each ends in a NUL
  }
  return names;
}

}  // namespace

// In this order: a change of owner takes bits from the mode, and the mode's
// bits for the group are those of the access control list.
void KeepAttributes(int from, int to, const std::string& name) {
  struct stat status {};
  if (fstat(from, &status) != 0) throw SystemError("read " + name, name, errno);
  AttributeKeeper keeper(from, to, name);
  keeper.KeepOwnerOf(status);
  keeper.KeepExtended();
  keeper.KeepModeOf(status);
}

void CopyAccess(int from, int to, int folder, mode_t mask, const std::string& name) {
  struct stat original {
  }, copy{};
  if (fstat(from, &original) != 0 || fstat(to, &copy) != 0) {
    throw SystemError("read the mode for " + name, name, errno);
  }
  const AttributeKeeper keeper(from, to, name);
  const bool is_certain = original.st_gid == copy.st_gid && !keeper.HasAccessList(from) &&
                          !keeper.HasAccessList(to) && !keeper.HasAccessList(folder);
  constexpr mode_t kReadAndWrite = 0666;
  const mode_t mode = original.st_mode & kReadAndWrite & ~mask;
  if (fchmod(to, is_certain ? mode : mode & S_IRWXU) != 0) {
    throw SystemError("set the mode of " + name, name, errno, HintForLackOf("modes", errno));
  }
}

}  // namespace quarry::settings
