#include <sodium.h>
#include <sys/stat.h>

#include <array>
#include <memory>
#include <string>

#include "config/agent_config.h"
#include "platform/cr_runtime.h"
#include "platform/local/local_metab.h"
#include "tools/agent_settings.h"
#include "tools/check_text.h"
#include "tools/commands.h"
#include "tools/display.h"
#include "tools/errors.h"
#include "tools/files.h"
#include "tools/json_text.h"
#include "tools/model_file.h"
#include "tools/scan.h"
#include "tools/secrets.h"
#include "tools/signals.h"
#include "tools/silent_cerr.h"

namespace quarry::tool {

using ::storage::config::AgentCfg;
using ::storage::utils::LocalMetab;

namespace {

// What an operator can do about a failure of the metabase on a folder.
std::string RoutingHint(cr_status_t status) {
  const AgentSetting& ledger = AgentSettingOf("ledger_url");
  const std::string setting = "[" + ledger.section + "] " + ledger.option;
  switch (status) {
    case kLedgerUrlUnsupported:
      return "this command starts against a folder: set " + setting + " to file://FOLDER";
    case kLedgerFolderMissing:
    case kLedgerFolderUnreadable:
      return "see " + setting + "; it names the folder of the routing tables";
    case kLedgerTableMissing:
    case kLedgerTableUnreadable:
      return "put readable files r.rt and c.rt into the folder of " + setting;
    case kRoutingTargetIsFolder:
    case kRoutingTargetFailed:
      return "/tmp/r.rt and /tmp/c.rt must be files that this user may replace";
    default:
      return "";
  }
}

// The first required setting that the file lacks, else the password: the order
// in which a start looks for them.
Advice ConfigAdvice(ModelFile* model) {
  for (const AgentSetting& setting : AgentSettings()) {
    if (setting.required && !model->Has(setting.section, setting.option)) {
      return AbsentSettingAdvice(setting, model);
    }
  }
  return PasswordAdvice(TryPassword(model), model);
}

// Only a failed request for the routing tables has a detail text.
std::string HintFor(const Cr_ErrnoException& error, ModelFile* model) {
  if (error.detail() != nullptr) return RoutingHint(error.status());
  const Advice advice = ConfigAdvice(model);
  return advice.message + "; " + advice.hint;
}

std::string StartReport(const Cr_ErrnoException& error, const std::string& hint) {
  return ErrorReport("agent start failed: " + Shown(error.what()) + " (status " +
                         std::to_string(error.status()) + ")",
                     hint);
}

// Why the file cannot be loaded, without its lines, which may hold a password.
std::string ReasonsAgainst(const std::string& file) {
  std::string reasons;
  try {
    const std::string text = ReadInput(file);
    for (const Finding& finding : CheckText(text, file)) {
      if (!finding.IsError()) continue;
      reasons += "quarry-config: " + DisplayName(file) + ':' + std::to_string(finding.line) + ": " +
                 finding.message + '\n';
    }
    reasons += "  hint: for more: quarry-config check " + ShellQuotedFile(file) + '\n';
  } catch (const ToolError& unreadable) {
    reasons = unreadable.report();
  }
  return reasons;
}

[[noreturn]] void ThrowStartFailed(const Cr_ErrnoException& error, const std::string& file) {
  std::string hint, more;
  Masker masker;
  try {
    ModelFile model(file);
    const AgentSetting& password = AgentSettingOf("cr_password");
    if (model.Has(password.section, password.option)) {
      masker.Hide(model.GetValue(password.section, password.option));
    }
    hint = HintFor(error, &model);
  } catch (const ToolError&) {
    more = ReasonsAgainst(file);
  }
  throw ToolError(kExitNo, masker.Masked(StartReport(error, hint) + more));
}

std::unique_ptr<AgentCfg> StartAgent(const std::string& file) {
  const auto metab = std::make_shared<LocalMetab>();
  try {
    const SilentCerr silent;
    const SignalsHeld held;
    return std::make_unique<AgentCfg>(metab, file);
  } catch (const Cr_ErrnoException& error) {
    ThrowStartFailed(error, file);
  }
}

struct ShownSetting {
  std::string accessor, value;
  std::size_t line;  // where it stands in the file; 0 when nowhere
};

std::size_t LineOf(const AgentSetting& setting, const OriginMap& origins) {
  const auto section = origins.find(setting.section);
  if (section == origins.end()) return 0;
  const auto option = section->second.options.find(setting.option);
  return option == section->second.options.end() ? 0 : option->second.number;
}

// The settings as they may be shown.
std::vector<ShownSetting> ShownSettings(const AgentCfg& cfg, ModelFile* model) {
  const AgentSetting& password = AgentSettingOf("cr_password");
  Masker masker;
  masker.Hide(cfg.cr_password());
  masker.Hide(model->GetValue(password.section, password.option));
  const std::array<std::string, 7> values = {cfg.cr_login(),
                                             cfg.cr_password().empty() ? "(empty)" : kMask,
                                             cfg.ssl_key_dir(),
                                             cfg.ledger_url(),
                                             cfg.metabase_url(),
                                             cfg.ctrl_address(),
                                             std::to_string(cfg.numeric_option())};
  const OriginMap origins = FindOrigins(model->text());
  std::vector<ShownSetting> shown;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const AgentSetting& setting = AgentSettings()[i];
    shown.push_back({setting.accessor, masker.Masked(values[i]), LineOf(setting, origins)});
  }
  return shown;
}

struct RoutingTable {
  const char* accessor;
  std::string path;
  std::size_t bytes;
  std::string sha256;
};

RoutingTable LookAt(const char* accessor, const std::string& path) {
  const std::string content = ReadInput(path);
  std::array<unsigned char, crypto_hash_sha256_BYTES> hash{};
  crypto_hash_sha256(hash.data(), reinterpret_cast<const unsigned char*>(content.data()),
                     content.size());
  std::array<char, 2 * crypto_hash_sha256_BYTES + 1> hex{};
  sodium_bin2hex(hex.data(), hex.size(), hash.data(), hash.size());
  return {accessor, path, content.size(), hex.data()};
}

std::string SettingsText(const std::vector<ShownSetting>& settings,
                         const std::vector<RoutingTable>& tables, const std::string& file) {
  std::string text;
  for (const ShownSetting& setting : settings) {
    const std::string origin =
        setting.line == 0 ? "default" : DisplayName(file) + ':' + std::to_string(setting.line);
    text += setting.accessor + " = " + Shown(setting.value) + "  (" + origin + ")\n";
  }
  for (const RoutingTable& table : tables) {
    text += std::string(table.accessor) + " = " + table.path + "  (" + std::to_string(table.bytes) +
            " bytes, SHA-256 " + table.sha256 + ")\n";
  }
  return text;
}

std::string SettingsJson(const AgentCfg& cfg, const std::vector<ShownSetting>& settings,
                         const std::vector<RoutingTable>& tables, const std::string& file) {
  nlohmann::ordered_json document;
  document["schema"] = 1;
  AddText(&document, "config_path", file);
  nlohmann::ordered_json lines;
  for (const ShownSetting& setting : settings) {
    AddText(&document, setting.accessor, setting.value);
    if (setting.line != 0) lines[setting.accessor] = setting.line;
  }
  document["numeric_option"] = cfg.numeric_option();
  document["lines"] = lines;
  nlohmann::ordered_json files = nlohmann::ordered_json::array();
  for (const RoutingTable& table : tables) {
    document[table.accessor] = table.path;
    files.push_back({{"path", table.path}, {"bytes", table.bytes}, {"sha256", table.sha256}});
  }
  document["routing_tables"] = files;
  return JsonText(document);
}

// The file is read again to tell where the settings stand, which a pipe does
// not allow. That there is no file is the start's affair.
void DemandRegularFile(const std::string& file) {
  struct stat status {};
  const bool other = stat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
  if (file != "-" && !other) return;
  throw ToolError(kExitUsage,
                  ErrorReport("an agent starts from a regular file, not from " + DisplayName(file),
                              "give a file's name; save the text of a pipe first"));
}

}  // namespace

int RunAgent(const AgentRequest& request) {
  DemandName(request.file);
  DemandRegularFile(request.file);
  ForbidCoreDumps();
  const std::unique_ptr<AgentCfg> cfg = StartAgent(request.file);
  ModelFile model(request.file);
  const auto settings = ShownSettings(*cfg, &model);
  const std::vector<RoutingTable> tables = {
      LookAt("routing_table_r_path", cfg->routing_table_r_path()),
      LookAt("routing_table_c_path", cfg->routing_table_c_path())};
  WriteStandardOutput(request.json ? SettingsJson(*cfg, settings, tables, request.file)
                                   : SettingsText(settings, tables, request.file));
  return kExitDone;
}

}  // namespace quarry::tool
