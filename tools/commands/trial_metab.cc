#include "tools/commands/trial_metab.h"

#include <sodium.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/local/local_metab.h"
#include "settings/error.h"
#include "settings/file_reading.h"
#include "tools/terminal/errors.h"

namespace quarry::tool {

namespace {

// A folder of mode 0700 that the destructor removes with its files.
class PrivateFolder {
 public:
  PrivateFolder() {
    if (mkdtemp(path_.data()) != nullptr) return;
    throw settings::SystemError("make a folder in /tmp", "/tmp", errno);
  }
  ~PrivateFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
    if (error)
      WriteDiagnostics({Warning("cannot remove the folder " + path_, "remove it: rm -r " + path_)});
  }
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_ = "/tmp/quarry-config-XXXXXX";
};

TrialMetab::Table Describe(const std::string& path) {
  const std::string content = settings::ReadFile(path);
  std::array<unsigned char, crypto_hash_sha256_BYTES> hash{};
  crypto_hash_sha256(hash.data(), reinterpret_cast<const unsigned char*>(content.data()),
                     content.size());
  std::array<char, 2 * crypto_hash_sha256_BYTES + 1> hex{};
  sodium_bin2hex(hex.data(), hex.size(), hash.data(), hash.size());
  return {content.size(), hex.data()};
}

}  // namespace

cr_status_t TrialMetab::GetRoutingTables(const std::string& ledger_url, const std::string& cr_login,
                                         const std::string& cr_password, std::int32_t reserved,
                                         const std::string& ssl_key_dir, const std::string& r_path,
                                         const std::string& c_path) {
  std::optional<PrivateFolder> folder;
  if (!places_tables_) folder.emplace();
  const std::string r_place = folder ? folder->path() + "/r.rt" : r_path;
  const std::string c_place = folder ? folder->path() + "/c.rt" : c_path;
  const cr_status_t status = ::storage::utils::LocalMetab().GetRoutingTables(
      ledger_url, cr_login, cr_password, reserved, ssl_key_dir, r_place, c_place);
  if (status == 0) tables_ = {Describe(r_place), Describe(c_place)};
  return status;
}

}  // namespace quarry::tool
