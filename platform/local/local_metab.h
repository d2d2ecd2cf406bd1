// LocalMetab is a metabase service library for a single machine without a server: the ledger is a
// folder that contains the two routing tables as files.
#ifndef QUARRY_PLATFORM_LOCAL_LOCAL_METAB_H_
#define QUARRY_PLATFORM_LOCAL_LOCAL_METAB_H_

#include <string>

#include "../export.h"
#include "../lib_metab_interface.h"

// What LocalMetab::GetRoutingTables returns when the ledger URL does not have the form
// "file://FOLDER". The constants below are its other failures.
inline constexpr cr_status_t kLedgerUrlUnsupported = 101;
// The ledger folder does not exist.
inline constexpr cr_status_t kLedgerFolderMissing = 102;
// The ledger folder is not a directory, or may not be searched.
inline constexpr cr_status_t kLedgerFolderUnreadable = 103;
// The ledger folder lacks r.rt or c.rt.
inline constexpr cr_status_t kLedgerTableMissing = 104;
// r.rt or c.rt cannot be read, is not a regular file, or changed during the copy.
inline constexpr cr_status_t kLedgerTableUnreadable = 105;
// The path of a routing table is a directory.
inline constexpr cr_status_t kRoutingTargetIsFolder = 106;
// A routing table cannot be written, or cannot be renamed to its path.
inline constexpr cr_status_t kRoutingTargetFailed = 107;

namespace storage::utils {

// Has no state; any number of threads may use one object.
class QUARRY_EXPORT LocalMetab : public LibMetabInterface {
 public:
  ~LocalMetab() override;

  // `ledger_url` is "file://" followed by the path of a folder, without any escapes. Copies the
  // files r.rt and c.rt of that folder to `r_path` and `c_path`; the other arguments are not used.
  //
  // Each table is copied to a temporary file (mode 0600) next to its target, flushed to disk and
  // renamed, so that a reader sees the complete old file or the complete new one. A symbolic link
  // at a target is replaced, never followed. Neither target is changed before both copies are
  // complete; a failure between the two renames leaves the first target replaced and returns
  // kRoutingTargetFailed. A table that changes while it is copied is refused; replace tables by
  // rename. Leaves no temporary file unless the process is killed; the same user's next call
  // removes it (its name is ".quarry-table-" and six characters).
  cr_status_t GetRoutingTables(const std::string& ledger_url, const std::string& cr_login,
                               const std::string& cr_password, std::int32_t reserved,
                               const std::string& ssl_key_dir, const std::string& r_path,
                               const std::string& c_path) override;
};

}  // namespace storage::utils

#endif  // QUARRY_PLATFORM_LOCAL_LOCAL_METAB_H_
