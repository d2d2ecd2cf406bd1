// LocalMetab is a metabase service library for one machine without a server:
// the ledger is a folder that holds the two routing tables as files.
#ifndef QUARRY_PLATFORM_LOCAL_LOCAL_METAB_H_
#define QUARRY_PLATFORM_LOCAL_LOCAL_METAB_H_

#include <string>

#include "platform/export.h"
#include "platform/lib_metab_interface.h"

// What LocalMetab::GetRoutingTables returns when the ledger URL has another
// form than "file://FOLDER". The numbers below are its other failures.
inline constexpr cr_status_t kLedgerUrlUnsupported = 101;
// The ledger folder does not exist.
inline constexpr cr_status_t kLedgerFolderMissing = 102;
// The ledger folder is none, or may not be entered.
inline constexpr cr_status_t kLedgerFolderUnreadable = 103;
// The ledger folder lacks r.rt or c.rt.
inline constexpr cr_status_t kLedgerTableMissing = 104;
// r.rt or c.rt cannot be read, is no regular file or changed meanwhile.
inline constexpr cr_status_t kLedgerTableUnreadable = 105;
// A folder stands where a routing table belongs.
inline constexpr cr_status_t kRoutingTargetIsFolder = 106;
// A routing table cannot be written, or not be put in its place.
inline constexpr cr_status_t kRoutingTargetFailed = 107;

namespace storage::utils {

// Holds nothing; any number of threads may use one object.
class QUARRY_EXPORT LocalMetab : public LibMetabInterface {
 public:
  ~LocalMetab() override;

  // `ledger_url` is "file://" and the path of a folder, taken literally. Copies
  // its files r.rt and c.rt to the two paths; the other arguments are not used.
  //
  // Each copy is made in a private file (mode 0600) beside its target, flushed
  // to disk and renamed, so that a reader sees the old file or the new one,
  // whole. A symbolic link at a target is replaced, never followed. Neither
  // target is touched before both copies are complete; a failure between the
  // two renames leaves the first one new and returns kRoutingTargetFailed.
  // A table that changes while it is copied is refused; exchange tables by
  // rename. No other file is left behind, but by a process that is killed: its
  // ".quarry-table-" and six characters beside a target goes with the same
  // user's next call.
  cr_status_t GetRoutingTables(const std::string& ledger_url, const std::string& cr_login,
                               const std::string& cr_password, std::int32_t reserved,
                               const std::string& ssl_key_dir, const std::string& r_path,
                               const std::string& c_path) override;
};

}  // namespace storage::utils

#endif  // QUARRY_PLATFORM_LOCAL_LOCAL_METAB_H_
