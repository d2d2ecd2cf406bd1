#include "config/agent_config.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <utility>

#include "config/agent_settings.h"
#include "dmconfig/config_file.h"
#include "dmconfig/status.h"
#include "platform/cr_runtime.h"

namespace storage::config {

using quarry::storage::dmconfig::DMConfig;
using quarry::storage::dmconfig::DMConfigFile;
using quarry::storage::dmconfig::kStatusOk;
using utils::LibMetabInterface;

namespace {

constexpr std::size_t kPathBytes = 4096;
constexpr std::size_t kPasswordBytes = 4096;
constexpr std::size_t kPasswordCapacity = 255;  // passed to the decryption; counts the NUL
constexpr std::int32_t kDefaultNumericOption = 10102;
constexpr std::int32_t kAllBitsSet = -1;

// A buffer for the plain password; the destructor wipes it.
struct PasswordBuffer {
  // Leaves `text` uninitialized: the decryption fills it.
  PasswordBuffer() {}  // NOLINT(modernize-use-equals-default)
  ~PasswordBuffer() { explicit_bzero(text, sizeof text); }
  PasswordBuffer(const PasswordBuffer&) = delete;
  PasswordBuffer& operator=(const PasswordBuffer&) = delete;

  char text[kPasswordBytes];
};

[[noreturn]] void Die(const char* message) {
  throw Cr_ErrnoException(kCrConfigFailure, message, nullptr);
}

std::string UpToNul(const std::string& value) { return value.substr(0, value.find('\0')); }

}  // namespace

AgentCfg::Password::~Password() { Wipe(); }

// A short text is inside the std::string and remains there after a move.
AgentCfg::Password::Password(Password&& other) noexcept : text(std::move(other.text)) {
  other.Wipe();
}

AgentCfg::Password& AgentCfg::Password::operator=(Password&& other) noexcept {
  Wipe();
  text = std::move(other.text);
  other.Wipe();
  return *this;
}

// Overwrites the whole capacity, including the bytes past the end.
void AgentCfg::Password::Wipe() {
  text.resize(text.capacity());
  explicit_bzero(text.data(), text.size());
  text.clear();
}

AgentCfg::AgentCfg(std::weak_ptr<LibMetabInterface> lib_metab,
                   const boost::filesystem::path& config_path)
    : config_path_(config_path), lib_metab_(std::move(lib_metab)) {
  DMConfig config;
  LoadConfigOrDie(&config);
  GetConfigValuesOrDie(&config);
  GetRoutingTablesOrDie();
}

AgentCfg::~AgentCfg() = default;
AgentCfg::AgentCfg(const AgentCfg& other) = default;
AgentCfg::AgentCfg(AgentCfg&& other) noexcept = default;
AgentCfg& AgentCfg::operator=(AgentCfg&& other) noexcept = default;

AgentCfg& AgentCfg::operator=(const AgentCfg& other) {
  AgentCfg copy(other);
  return *this = std::move(copy);
}

void AgentCfg::LoadConfigOrDie(DMConfig* config) {
  DMConfigFile file(config_path_.native(), "");
  if (file.LoadConfig(config) == kStatusOk) return;
  std::stringstream message;
  message << "Unable to parse the agent config file: " << config_path_;
  throw Cr_ErrnoException(kCrConfigFailure, message, nullptr);
}

void AgentCfg::GetConfigValuesOrDie(DMConfig* config) {
  const auto field_of = [this](AgentSetting setting) -> std::string* {
    switch (setting) {
      case AgentSetting::kLogin:
        return &cr_login_;
      case AgentSetting::kPassword:
        return &cr_password_.text;
      case AgentSetting::kKeyDir:
        return &ssl_key_dir_;
      case AgentSetting::kLedgerUrl:
        return &ledger_url_;
      case AgentSetting::kMetabaseUrl:
        return &metabase_url_;
      case AgentSetting::kControlAddress:
        return &ctrl_address_;
      case AgentSetting::kNumericOption:
        break;
    }
    return nullptr;
  };
  std::string comment;  // GetOptionValue requires it; not used
  for (const AgentSettingRow& row : kAgentSettings) {
    if (!row.is_required()) continue;
    const int status = config->GetOptionValue(row.section_name(), row.option_name(),
                                              field_of(row.setting), &comment);
    if (status != kStatusOk) Die(row.failure);
  }
  GetNumericOption(config);
  DecryptPasswordOrDie();
}

void AgentCfg::GetNumericOption(DMConfig* config) {
  const AgentSettingRow& row = RowOf(AgentSetting::kNumericOption);
  std::string text, comment;
  const int status = config->GetOptionValue(row.section_name(), row.option_name(), &text, &comment);
  numeric_option_ = kDefaultNumericOption;
  if (status != kStatusOk) return;
  // Text that is not a number must be accepted; atol gives a number for any text.
  // NOLINTNEXTLINE(cert-err34-c)
  numeric_option_ = static_cast<std::int32_t>(std::atol(text.c_str()));
}

void AgentCfg::DecryptPasswordOrDie() {
  char key_file[kPathBytes];
  // A longer path is truncated.
  (void)std::snprintf(key_file, kPathBytes - 1, "%s%c%s", ssl_key_dir_.c_str(), '/', "auth.key");

  PasswordBuffer password;
  if (DecryptPasswdWithKey(key_file, cr_password_.text.c_str(), password.text, kPasswordCapacity) !=
      0) {
    Die("Unable to decrypt password from config file");
  }
  cr_password_.Wipe();  // before the assignment, which may reallocate
  cr_password_.text = password.text;
}

void AgentCfg::GetRoutingTablesOrDie() {
  const std::shared_ptr<LibMetabInterface> metab = LibMetabInterface::LockPointer(lib_metab_);
  char r_path[kPathBytes];
  char c_path[kPathBytes];
  (void)std::snprintf(r_path, sizeof r_path, "%s", kRoutingTableRPath);
  (void)std::snprintf(c_path, sizeof c_path, "%s", kRoutingTableCPath);

  // The decrypted password contains no NUL.
  const cr_status_t status =
      metab->GetRoutingTables(UpToNul(ledger_url_), UpToNul(cr_login_), cr_password_.text,
                              kAllBitsSet, UpToNul(ssl_key_dir_), r_path, c_path);
  if (status != 0) {
    throw Cr_ErrnoException(status, "Unable to get the routing tables from ledgerd",
                            CRStatusToStringA(status));
  }
  routing_table_r_path_ = r_path;
  routing_table_c_path_ = c_path;
}

}  // namespace storage::config
