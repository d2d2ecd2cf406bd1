#include "platform/local/key_permissions.h"

#include <endian.h>
#include <linux/posix_acl.h>
#include <linux/posix_acl_xattr.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

namespace quarry::platform {

namespace {

constexpr char kAclAttribute[] = "system.posix_acl_access";
constexpr std::size_t kMostAclEntries = 500;
constexpr unsigned kAllPermissions = ACL_READ | ACL_WRITE | ACL_EXECUTE;

struct AclEntry {
  unsigned tag, permissions, id;
};

// A file's list; without entries when it has none beyond its mode.
class Acl {
 public:
  // Returns false, with errno set, on failure; with ERANGE for a list that is too long or
  // malformed.
  bool Read(int file);

  const AclEntry* begin() const { return entries_.data(); }
  const AclEntry* end() const { return entries_.data() + size_; }
  bool empty() const { return size_ == 0; }

 private:
  std::array<AclEntry, kMostAclEntries> entries_;
  std::size_t size_ = 0;
};

bool Acl::Read(int file) {
  constexpr std::size_t kHeaderBytes = sizeof(posix_acl_xattr_header);
  constexpr std::size_t kEntryBytes = sizeof(posix_acl_xattr_entry);
  std::array<char, kHeaderBytes + kMostAclEntries * kEntryBytes> bytes;
  const ssize_t count = fgetxattr(file, kAclAttribute, bytes.data(), bytes.size());
  if (count == -1) return errno == ENODATA || errno == ENOTSUP;

  const auto length = static_cast<std::size_t>(count);
  posix_acl_xattr_header header{};
  if (length >= kHeaderBytes) std::memcpy(&header, bytes.data(), kHeaderBytes);
  if (le32toh(header.a_version) != POSIX_ACL_XATTR_VERSION ||
      (length - kHeaderBytes) % kEntryBytes != 0) {
    errno = ERANGE;
    return false;
  }
  for (std::size_t at = kHeaderBytes; at < length; at += kEntryBytes) {
    posix_acl_xattr_entry entry{};
    std::memcpy(&entry, bytes.data() + at, kEntryBytes);
    entries_[size_++] = {le16toh(entry.e_tag), le16toh(entry.e_perm), le32toh(entry.e_id)};
  }
  return true;
}

// What a file grants to others than its owner, after the mask of its list.
struct Grants {
  unsigned group = 0;         // permissions of the file's group
  unsigned others = 0;        // permissions of everybody else
  std::size_t named = 0;      // how many users and groups the list grants anything
  bool names_caller = false;  // the last of them
};

Grants GrantsOf(const Acl& acl, mode_t mode) {
  Grants grants;
  if (acl.empty()) {
    grants.group = mode >> 3 & kAllPermissions;
    grants.others = mode & kAllPermissions;
    return grants;
  }
  const auto* const mask = std::find_if(
      acl.begin(), acl.end(), [](const AclEntry& entry) { return entry.tag == ACL_MASK; });
  const unsigned masked = mask == acl.end() ? kAllPermissions : mask->permissions;
  for (const AclEntry& entry : acl) {
    const unsigned granted = entry.permissions & masked;
    if (entry.tag == ACL_GROUP_OBJ) grants.group = granted;
    if (entry.tag == ACL_OTHER) grants.others = entry.permissions;
    if ((entry.tag != ACL_USER && entry.tag != ACL_GROUP) || granted == 0) continue;
    ++grants.named;
    grants.names_caller = entry.tag == ACL_USER && entry.id == geteuid();
  }
  return grants;
}

bool IsInGroup(gid_t group) {
  if (group == getegid()) return true;
  const int count = getgroups(0, nullptr);
  if (count <= 0) return false;
  const std::unique_ptr<gid_t[]> groups(new (std::nothrow) gid_t[static_cast<std::size_t>(count)]);
  if (groups == nullptr) return false;
  const int read = getgroups(count, groups.get());
  return read > 0 && std::find(groups.get(), groups.get() + read, group) != groups.get() + read;
}

bool IsMountedForCaller(const Grants& grants, const struct stat& status) {
  if (geteuid() == 0 || status.st_uid != 0 || grants.others != 0) return false;
  if (grants.named == 0) return grants.group == ACL_READ && IsInGroup(status.st_gid);
  constexpr mode_t kMostMode = S_IRUSR | S_IRGRP;
  const mode_t permissions = status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
  return grants.named == 1 && grants.names_caller && grants.group == 0 &&
         (permissions & ~kMostMode) == 0;
}

}  // namespace

DecryptResult CheckKeyPermissions(int file, const struct stat& status) {
  const uid_t caller = geteuid();
  const bool trusted_owner = caller == 0 || status.st_uid == caller || status.st_uid == 0;
  if (!trusted_owner) return kDecryptKeyTooOpen;
  Acl acl;
  if (!acl.Read(file)) return errno == ERANGE ? kDecryptKeyTooOpen : kDecryptNoKeyFile;
  const Grants grants = GrantsOf(acl, status.st_mode);
  const bool is_private = grants.group == 0 && grants.others == 0 && grants.named == 0;
  return is_private || IsMountedForCaller(grants, status) ? kDecryptDone : kDecryptKeyTooOpen;
}

}  // namespace quarry::platform
