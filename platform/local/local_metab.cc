#include "platform/local/local_metab.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/local/file_descriptor.h"

namespace storage::utils {

using quarry::platform::FileDescriptor;
using quarry::platform::ReadUpTo;
using quarry::platform::WriteAll;

namespace {

constexpr std::string_view kScheme = "file://";
constexpr std::string_view kCopyPrefix = ".quarry-table-";

bool SameTime(const timespec& left, const timespec& right) {
  return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

// Whether the file belongs to this user and no process holds a lock on it, as after its process was
// killed. Locks the file when it returns true.
bool LockIfAbandoned(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
         flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

// A private copy of one routing table, in a temporary file next to its target. The destructor
// removes the file unless PutInPlace has renamed it. The file is locked for the lifetime of the
// object, which distinguishes it from a file left by a killed process.
class PendingTable {
 public:
  explicit PendingTable(const std::string& target)
      : target_(target),
        folder_(target.substr(0, target.rfind('/') + 1)),
        folder_descriptor_(
            open(folder_.empty() ? "." : folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
        out_(-1) {}
  ~PendingTable() {
    if (made_) unlink(copy_.c_str());
  }
  PendingTable(const PendingTable&) = delete;
  PendingTable& operator=(const PendingTable&) = delete;

  cr_status_t CopyFrom(const std::string& source);
  cr_status_t PutInPlace();

 private:
  cr_status_t Make();
  bool MakeAndLock();
  void RemoveAbandoned() const;
  cr_status_t Fill(int source);

  const std::string target_;
  const std::string folder_;  // ends in "/", or is empty
  std::string copy_;
  FileDescriptor folder_descriptor_;
  FileDescriptor out_;
  bool made_ = false;
};

cr_status_t PendingTable::CopyFrom(const std::string& source) {
  const FileDescriptor in(open(source.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (in.get() == -1) {
    return errno == ENOENT ? kLedgerTableMissing : kLedgerTableUnreadable;
  }
  struct stat status {};
  if (fstat(in.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return kLedgerTableUnreadable;
  }
  const cr_status_t made = Make();
  if (made != 0) return made;
  const cr_status_t filled = Fill(in.get());
  if (filled != 0) return filled;
  struct stat after {};
  const bool unchanged = fstat(in.get(), &after) == 0 && after.st_size == status.st_size &&
                         SameTime(after.st_mtim, status.st_mtim) &&
                         SameTime(after.st_ctim, status.st_ctim);
  return unchanged ? 0 : kLedgerTableUnreadable;
}

cr_status_t PendingTable::Make() {
  struct stat status {};
  if (lstat(target_.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
    return kRoutingTargetIsFolder;
  }
  if (folder_descriptor_.get() == -1) return kRoutingTargetFailed;
  RemoveAbandoned();
  return MakeAndLock() ? 0 : kRoutingTargetFailed;
}

// Until the new file is locked, another process may treat it as abandoned and lock or remove it;
// then creates another one.
bool PendingTable::MakeAndLock() {
  for (;;) {
    copy_.assign(folder_).append(kCopyPrefix).append("XXXXXX");
    out_.Reset(mkostemp(copy_.data(), O_CLOEXEC));  // with mode 0600
    if (out_.get() == -1) return false;
    const bool locked_by_other = flock(out_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    const bool removed = access(copy_.c_str(), F_OK) != 0 && errno == ENOENT;
    made_ = !locked_by_other && !removed;
    if (made_) return true;
  }
}

void PendingTable::RemoveAbandoned() const {
  DIR* const folder = opendir(folder_.empty() ? "." : folder_.c_str());
  if (folder == nullptr) return;
  // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread uses the directory stream.
  while (const dirent* entry = readdir(folder)) {
    const std::string_view name = entry->d_name;
    if (name.substr(0, kCopyPrefix.size()) != kCopyPrefix) continue;
    const FileDescriptor found(openat(folder_descriptor_.get(), entry->d_name,
                                      O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (LockIfAbandoned(found.get())) {
      unlinkat(folder_descriptor_.get(), entry->d_name, 0);
    }
  }
  closedir(folder);
}

cr_status_t PendingTable::Fill(int source) {
  std::array<char, 65536> bytes;
  for (std::size_t size = bytes.size(); size == bytes.size();) {
    if (!ReadUpTo(source, bytes.data(), bytes.size(), &size)) {
      return kLedgerTableUnreadable;
    }
    if (!WriteAll(out_.get(), bytes.data(), size)) return kRoutingTargetFailed;
  }
  return fsync(out_.get()) == 0 ? 0 : kRoutingTargetFailed;
}

cr_status_t PendingTable::PutInPlace() {
  if (std::rename(copy_.c_str(), target_.c_str()) != 0) {
    return kRoutingTargetFailed;
  }
  made_ = false;
  const bool on_disk = fsync(folder_descriptor_.get()) == 0;
  return on_disk ? 0 : kRoutingTargetFailed;
}

cr_status_t CheckLedger(const std::string& folder) {
  struct stat status {};
  if (stat(folder.c_str(), &status) != 0) {
    return errno == ENOENT ? kLedgerFolderMissing : kLedgerFolderUnreadable;
  }
  const bool usable = S_ISDIR(status.st_mode) && access(folder.c_str(), X_OK) == 0;
  return usable ? 0 : kLedgerFolderUnreadable;
}

cr_status_t CopyTables(const std::string& ledger, const std::string& r_path,
                       const std::string& c_path) {
  PendingTable r_table(r_path);
  PendingTable c_table(c_path);
  // Both are complete before either target changes.
  cr_status_t status = r_table.CopyFrom(ledger + "/r.rt");
  if (status == 0) status = c_table.CopyFrom(ledger + "/c.rt");
  if (status == 0) status = r_table.PutInPlace();
  if (status == 0) status = c_table.PutInPlace();
  return status;
}

}  // namespace

LocalMetab::~LocalMetab() = default;

cr_status_t LocalMetab::GetRoutingTables(const std::string& ledger_url,
                                         const std::string& /*cr_login*/,
                                         const std::string& /*cr_password*/,
                                         std::int32_t /*reserved*/,
                                         const std::string& /*ssl_key_dir*/,
                                         const std::string& r_path, const std::string& c_path) {
  const bool supported =
      ledger_url.compare(0, kScheme.size(), kScheme) == 0 && ledger_url.size() > kScheme.size();
  if (!supported) return kLedgerUrlUnsupported;
  const std::string folder = ledger_url.substr(kScheme.size());
  const cr_status_t status = CheckLedger(folder);
  return status == 0 ? CopyTables(folder, r_path, c_path) : status;
}

}  // namespace storage::utils
