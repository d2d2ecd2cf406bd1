// The interface to the metabase service library, which fetches an agent's routing tables.
#ifndef QUARRY_PLATFORM_LIB_METAB_INTERFACE_H_
#define QUARRY_PLATFORM_LIB_METAB_INTERFACE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "cr_runtime.h"
#include "export.h"

namespace storage::utils {

// Whoever creates an object of this interface owns it with std::shared_ptr and may release it at
// any time, on any thread.
class QUARRY_EXPORT LibMetabInterface {
 public:
  virtual ~LibMetabInterface() = default;

  // Obtains the routing tables from the service at `ledger_url` and writes them to the files
  // `r_path` and `c_path`. Blocks until that is done. Returns 0 when both files are in place,
  // otherwise a status that CRStatusToStringA can describe. `reserved` has all bits set. The
  // password is in plain text and must not be kept.
  virtual cr_status_t GetRoutingTables(const std::string& ledger_url, const std::string& cr_login,
                                       const std::string& cr_password, std::int32_t reserved,
                                       const std::string& ssl_key_dir, const std::string& r_path,
                                       const std::string& c_path) = 0;

  // Promotes the weak handle to an owning pointer, which is never null. Throws Cr_ErrnoException
  // with status 9 when the object no longer exists. The promotion is atomic: the owner may release
  // the object on another thread meanwhile.
  static std::shared_ptr<LibMetabInterface> LockPointer(
      // NOLINTNEXTLINE(performance-unnecessary-value-param)
      std::weak_ptr<LibMetabInterface> handle) {
    std::shared_ptr<LibMetabInterface> locked = handle.lock();
    if (locked == nullptr) {
      throw Cr_ErrnoException(kCrExpired, "Lib Metab (ledgerd) weak_ptr has expired", nullptr);
    }
    return locked;
  }
};

}  // namespace storage::utils

#endif  // QUARRY_PLATFORM_LIB_METAB_INTERFACE_H_
