// quarry-config agent

#include <sys/stat.h>

#include <memory>
#include <optional>

#include "config/agent_config.h"
#include "platform/cr_runtime.h"
#include "platform/local/local_metab.h"
#include "settings/line_scanner.h"
#include "tools/check/agent_advice.h"
#include "tools/check/ownership.h"
#include "tools/check/routing_targets.h"
#include "tools/commands/command.h"
#include "tools/commands/open_document.h"
#include "tools/commands/trial_metab.h"
#include "tools/terminal/cerr_silencer.h"
#include "tools/terminal/json.h"
#include "tools/terminal/redactor.h"
#include "tools/terminal/signal_block.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Document;
using ::storage::config::AgentCfg;

namespace {

struct AgentRequest {
  std::string file;
  bool json = false;
  bool place_tables = false;
};

// What an operator can do about a failure of the metabase on a folder.
std::string RoutingHint(cr_status_t status, bool place_tables) {
  const std::string setting = FullName(AgentSetting::kLedgerUrl);
  switch (status) {
    case kLedgerUrlUnsupported:
      return "this command reads the tables from a folder: set " + setting + " to file://FOLDER";
    case kLedgerFolderMissing:
    case kLedgerFolderUnreadable:
      return "see " + setting + "; it names the folder of the routing tables";
    case kLedgerTableMissing:
    case kLedgerTableUnreadable:
      return "put readable files r.rt and c.rt into the folder of " + setting;
    case kRoutingTargetIsFolder:
    case kRoutingTargetFailed:
      if (!place_tables) return "a trial needs room for the tables in /tmp";
      return "/tmp/r.rt and /tmp/c.rt must be files that this user may replace";
    default:
      return "";
  }
}

// About the first required setting that the document lacks, else about the password: the order in
// which a start looks for them.
Advice AdviceForConfig(Document* document) {
  for (const AgentSettingRow& row : kAgentSettings) {
    if (row.is_required() && !Has(row.setting, document)) {
      return AdviceForAbsent(row.setting, document);
    }
  }
  return AdviceForPassword(TryPassword(document), document);
}

// Only a failed request for the routing tables has a detail text.
std::string HintFor(const Cr_ErrnoException& error, bool place_tables, Document* document) {
  if (error.detail() != nullptr) return RoutingHint(error.status(), place_tables);
  const Advice advice = AdviceForConfig(document);
  return advice.message + "; " + advice.hint;
}

std::string FailureText(const Cr_ErrnoException& error) {
  return std::string("agent start failed: ") + error.what() + " (status " +
         std::to_string(error.status()) + ")";
}

// Why the file cannot be loaded, without its lines, which may hold a password.
void AddReasons(const std::string& file, std::vector<Diagnostic>* diagnostics) {
  try {
    const std::string text = ReadInput(file);
    for (const settings::Finding& finding : CheckForProgram(text, file, Program::kNone)) {
      if (!finding.IsError()) continue;
      diagnostics->push_back(
          Message(InputName(file) + ':' + std::to_string(finding.line) + ": " + finding.message));
    }
    diagnostics->back().hints.push_back("for more: quarry-config check " + ShellQuotedFile(file));
  } catch (const settings::Error& unreadable) {
    diagnostics->push_back(Message(unreadable.message, unreadable.hint));
  }
}

[[noreturn]] void ThrowStartFailed(const Cr_ErrnoException& error, const AgentRequest& request) {
  const std::string& file = request.file;
  std::vector<Diagnostic> diagnostics;
  try {
    Document document(file, ReadInput(file));
    Redactor redactor;
    if (Has(AgentSetting::kPassword, &document)) {
      redactor.Hide(ValueOf(AgentSetting::kPassword, &document));
    }
    diagnostics = {Message(redactor.Redact(FailureText(error)),
                           redactor.Redact(HintFor(error, request.place_tables, &document)))};
  } catch (const settings::Error&) {
    diagnostics = {Message(FailureText(error))};
    AddReasons(file, &diagnostics);
  }
  throw ToolError(kExitNo, diagnostics);
}

std::unique_ptr<AgentCfg> StartAgent(const std::shared_ptr<TrialMetab>& metab,
                                     const AgentRequest& request) {
  try {
    const ScopedCerrSilencer silencer;
    const ScopedSignalBlock blocked;
    return std::make_unique<AgentCfg>(metab, request.file);
  } catch (const Cr_ErrnoException& error) {
    ThrowStartFailed(error, request);
  }
}

struct ShownSetting {
  std::string accessor, value;
  std::size_t line;  // that sets it; 0 when it has its default
};

std::size_t LineOf(const AgentSettingRow& row, const settings::OriginMap& origins) {
  const auto section = origins.find(row.section_name());
  if (section == origins.end()) return 0;
  const auto option = section->second.options.find(row.option_name());
  return option == section->second.options.end() ? 0 : option->second.number;
}

std::string ShownValue(AgentSetting setting, const AgentCfg& cfg) {
  switch (setting) {
    case AgentSetting::kLogin:
      return cfg.cr_login();
    case AgentSetting::kPassword:
      return cfg.cr_password().empty() ? "(empty)" : kMask;
    case AgentSetting::kKeyDir:
      return cfg.ssl_key_dir();
    case AgentSetting::kLedgerUrl:
      return cfg.ledger_url();
    case AgentSetting::kMetabaseUrl:
      return cfg.metabase_url();
    case AgentSetting::kControlAddress:
      return cfg.ctrl_address();
    case AgentSetting::kNumericOption:
      break;
  }
  return std::to_string(cfg.numeric_option());
}

// The settings as they may be shown.
std::vector<ShownSetting> ShownSettings(const AgentCfg& cfg, Document* document) {
  Redactor redactor;
  redactor.Hide(cfg.cr_password());
  redactor.Hide(ValueOf(AgentSetting::kPassword, document));
  const settings::OriginMap origins = settings::FindOrigins(document->text());
  std::vector<ShownSetting> shown;
  for (const AgentSettingRow& row : kAgentSettings) {
    shown.push_back(
        {row.accessor, redactor.Redact(ShownValue(row.setting, cfg)), LineOf(row, origins)});
  }
  return shown;
}

// A routing table that a start fetched, and the path that it recorded for it.
struct ShownTable {
  const char* accessor;
  std::string path;
  TrialMetab::Table fetched;
  bool placed;
};

std::string SettingsText(const std::vector<ShownSetting>& settings,
                         const std::vector<ShownTable>& tables, const std::string& file) {
  std::string text;
  for (const ShownSetting& setting : settings) {
    const std::string origin =
        setting.line == 0 ? "default"
                          : EscapeForTerminal(InputName(file)) + ':' + std::to_string(setting.line);
    text += setting.accessor + " = " + EscapeForTerminal(setting.value) + "  (" + origin + ")\n";
  }
  for (const ShownTable& table : tables) {
    text += std::string(table.accessor) + " = " + table.path +
            (table.placed ? "  (" : "  (left alone; fetched ") +
            std::to_string(table.fetched.bytes) + " bytes, SHA-256 " + table.fetched.sha256 + ")\n";
  }
  return text;
}

std::string SettingsJson(const AgentCfg& cfg, const std::vector<ShownSetting>& settings,
                         const std::vector<ShownTable>& tables, const std::string& file) {
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
  for (const ShownTable& table : tables) {
    document[table.accessor] = table.path;
    files.push_back({{"path", table.path},
                     {"bytes", table.fetched.bytes},
                     {"sha256", table.fetched.sha256},
                     {"placed", table.placed}});
  }
  document["routing_tables"] = files;
  return JsonText(document);
}

// The file is read again to find the lines of the settings, which a pipe does not allow. An absent
// file is left to the start.
void RequireRegularFile(const std::string& file) {
  struct stat status {};
  const bool other = stat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
  if (file != "-" && !other) return;
  throw ToolError(kExitUsage, "an agent starts from a regular file, not from " + InputName(file),
                  "give a file's name; save the text of a pipe first");
}

// Another user's agent could not replace tables that this start leaves.
void RequireOwnTables(const AgentRequest& request) {
  const std::optional<ForeignTable> table = FindForeignTable();
  if (!table) return;
  throw ToolError(
      kExitNo,
      "routing table " + settings::Quoted(table->path) + " belongs to " + UserText(table->owner),
      "start as that user: " + CommandAs(table->owner, "quarry-config agent --place-tables " +
                                                           ShellQuotedFile(request.file)));
}

ExitStatus RunAgent(const AgentRequest& request) {
  RequireName(request.file);
  RequireRegularFile(request.file);
  if (request.place_tables) RequireOwnTables(request);
  DisableCoreDumps();
  const auto metab = std::make_shared<TrialMetab>(request.place_tables);
  const std::unique_ptr<AgentCfg> cfg = StartAgent(metab, request);
  Document document = OpenDocument(request.file);
  const auto settings = ShownSettings(*cfg, &document);
  const std::vector<ShownTable> tables = {{"routing_table_r_path", cfg->routing_table_r_path(),
                                           metab->tables().front(), request.place_tables},
                                          {"routing_table_c_path", cfg->routing_table_c_path(),
                                           metab->tables().back(), request.place_tables}};
  WriteStandardOutput(request.json ? SettingsJson(*cfg, settings, tables, request.file)
                                   : SettingsText(settings, tables, request.file));
  return kExitDone;
}

}  // namespace

Declaration DeclareAgent() {
  const auto request = std::make_shared<AgentRequest>();
  return {{
              Argument("FILE", ValueKind::kFile, &request->file, "The agent's file"),
              Flag("--json", &request->json, "Print the settings as JSON"),
              Flag("--place-tables", &request->place_tables,
                   "Replace the routing tables in /tmp, as an agent does"),
          },
          BindRequest(request, RunAgent)};
}

}  // namespace quarry::tool
