#include "platform/cr_runtime.h"
#include "platform/local/local_metab.h"

extern "C" const char* CRStatusToStringA(cr_status_t status) {
  switch (status) {
    case 0:
      return "success";
    case kCrConfigFailure:
      return "the configuration cannot be used";
    case kCrExpired:
      return "the object no longer exists";
    case kLedgerUrlUnsupported:
      return "the ledger URL does not have the form file://FOLDER";
    case kLedgerFolderMissing:
      return "the ledger folder does not exist";
    case kLedgerFolderUnreadable:
      return "the ledger folder cannot be used";
    case kLedgerTableMissing:
      return "the ledger folder lacks r.rt or c.rt";
    case kLedgerTableUnreadable:
      return "r.rt or c.rt in the ledger folder cannot be read, or changed "
             "meanwhile";
    case kRoutingTargetIsFolder:
      return "the path of a routing table is a folder";
    case kRoutingTargetFailed:
      return "a routing table cannot be written";
    default:
      return "unknown status";
  }
}
