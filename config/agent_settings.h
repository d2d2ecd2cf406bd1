// The table of the agent's settings: their order, their names, and what a start does without them;
// and the paths of the routing tables. Not installed; AgentCfg and the quarry-config program share
// it.
#ifndef QUARRY_CONFIG_AGENT_SETTINGS_H_
#define QUARRY_CONFIG_AGENT_SETTINGS_H_

#include <cstddef>

#include "platform/config_names.h"

namespace storage::config {

// Where a start has the two routing tables put.
inline constexpr char kRoutingTableRPath[] = "/tmp/r.rt";
inline constexpr char kRoutingTableCPath[] = "/tmp/c.rt";

// In the order in which a start looks for them.
enum class AgentSetting {
  kLogin,
  kPassword,
  kKeyDir,
  kLedgerUrl,
  kMetabaseUrl,
  kControlAddress,
  kNumericOption,
};

struct AgentSettingRow {
  AgentSetting setting;
  const char* accessor;  // of AgentCfg
  std::size_t section;   // offsets in the name pools
  std::size_t option;
  const char* failure;  // of a start without the setting; null when it is not required

  constexpr bool is_required() const { return failure != nullptr; }
  const char* section_name() const { return SectionName(section); }
  const char* option_name() const { return EntryName(option); }
};

inline constexpr AgentSettingRow kAgentSettings[] = {
    {AgentSetting::kLogin, "cr_login", kSectionCr, kEntryLogin,
     "Unable to get the CR login from config file"},
    {AgentSetting::kPassword, "cr_password", kSectionCr, kEntryPassword,
     "Unable to get the CR password from config file"},
    {AgentSetting::kKeyDir, "ssl_key_dir", kSectionSsl, kEntryKeyDir,
     "Unable to load SSL key dir from config file"},
    {AgentSetting::kLedgerUrl, "ledger_url", kSectionLedger, kEntryUrl,
     "Unable to load LEDGER url from config file"},
    {AgentSetting::kMetabaseUrl, "metabase_url", kSectionMetabase, kEntryUrl,
     "Unable to load metabase url from config file"},
    {AgentSetting::kControlAddress, "ctrl_address", kSectionControl, kEntryAddress,
     "Unable to load ctrl address from config file"},
    {AgentSetting::kNumericOption, "numeric_option", kSectionAgent, kEntryNumericOption, nullptr},
};

constexpr const AgentSettingRow& RowOf(AgentSetting setting) {
  return kAgentSettings[static_cast<std::size_t>(setting)];
}

constexpr bool RowsAreInOrder() {
  for (std::size_t i = 0; i < sizeof kAgentSettings / sizeof kAgentSettings[0]; ++i) {
    if (static_cast<std::size_t>(kAgentSettings[i].setting) != i) return false;
  }
  return true;
}
static_assert(RowsAreInOrder());

}  // namespace storage::config

#endif  // QUARRY_CONFIG_AGENT_SETTINGS_H_
