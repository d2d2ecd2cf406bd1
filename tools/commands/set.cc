// quarry-config set

#include <algorithm>
#include <optional>

#include "platform/local/sealed_password.h"
#include "settings/line_scanner.h"
#include "tools/check/agent_advice.h"
#include "tools/check/finding_text.h"
#include "tools/commands/command.h"
#include "tools/commands/edit_target.h"
#include "tools/commands/open_document.h"
#include "tools/commands/other_words.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::EditedText;
using settings::SameName;
using settings::Setting;
using storage::dmconfig::LineKind;

namespace {

// An option and its value, or the name of a file whose options are set.
struct SetRequest {
  EditTarget target;
  std::optional<std::string> section, option, value;
  std::optional<std::string> changes;
};

bool EndsInCarriageReturn(std::string_view value) { return !value.empty() && value.back() == '\r'; }

std::size_t CountCarriageReturns(const std::string& text) {
  std::size_t count = 0;
  settings::LineScanner scanner(text);
  for (settings::ScannedLine line; scanner.Next(&line);) {
    if (EndsInCarriageReturn(line.option.value)) ++count;
  }
  return count;
}

void WarnOfCarriageReturns(const std::string& file, const EditedText& edited,
                           const std::vector<Setting>& settings) {
  if (edited.edit.empty()) return;
  const auto wanted = static_cast<std::size_t>(
      std::count_if(settings.begin(), settings.end(),
                    [](const Setting& setting) { return EndsInCarriageReturn(setting.value); }));
  const std::size_t count = CountCarriageReturns(edited.text);
  if (count <= wanted) return;
  const std::string values =
      std::to_string(count - wanted) + (count - wanted == 1 ? " value ends" : " values end");
  WriteDiagnostics({Warning(
      InputName(file) + " has carriage returns at its line ends: " + values +
          " in one, which programs see",
      "remove all of them: sed -i 's/\\r$//' " + (file == "-" ? "FILE" : ShellQuotedFile(file)))});
}

bool IsAgentPassword(const Setting& setting) {
  const AgentSettingRow& password = RowOf(AgentSetting::kPassword);
  return SameName(setting.section, password.section_name()) &&
         SameName(setting.option, password.option_name());
}

constexpr char kSealInstead[] = "seal it into the file: quarry-config seal --into FILE";

// The output of a command that failed is empty; "password = " in a text of changes is then blank.
void RequirePassword(const std::vector<Setting>& settings) {
  const auto is_empty = [](const Setting& setting) {
    return IsAgentPassword(setting) && settings::WithoutTrailingBlanks(setting.value).empty();
  };
  if (std::none_of(settings.begin(), settings.end(), is_empty)) return;
  throw ToolError(kExitNo, "the value for the agent's password is empty", kSealInstead);
}

void WarnOfPlainPassword(const std::vector<Setting>& settings) {
  const auto is_plain = [](const Setting& setting) {
    return IsAgentPassword(setting) &&
           setting.value.substr(0, platform::kSealedPrefix.size()) != platform::kSealedPrefix;
  };
  if (std::none_of(settings.begin(), settings.end(), is_plain)) return;
  WriteDiagnostics({Warning("the value for the agent's password is not sealed", kSealInstead)});
}

// The options that the text sets, in its order, each once and with its last value.
std::vector<Setting> SettingsOf(const std::string& changes) {
  std::vector<Setting> settings;
  std::string section;
  settings::LineScanner scanner(changes);
  for (settings::ScannedLine line; scanner.Next(&line);) {
    if (line.kind == LineKind::kHeader) section = line.header.name;
    if (line.kind != LineKind::kOption) continue;
    settings.push_back({section, std::string(line.option.name), std::string(line.option.value)});
  }
  return settings::LastOfEach(settings);
}

std::vector<Setting> ReadChanges(const SetRequest& request) {
  if (*request.changes == "-" && request.target.file == "-") {
    throw ToolError(kExitUsage, "standard input cannot be both the file and the changes",
                    "give the name of one of them");
  }
  const settings::Snapshot changes = OpenSnapshot(*request.changes, ReadInput(*request.changes));
  WriteDiagnostics(DiagnosticsOf(CheckForProgram(changes.text(), changes.name(), Program::kNone),
                                 changes.name()));
  return SettingsOf(changes.text());
}

std::string HintForTooFew(const SetRequest& request) {
  std::vector<std::string> given = {request.target.file};
  for (const auto* word : {&request.section, &request.option}) {
    if (*word) given.push_back(**word);
  }
  return HintForJoinedNames("set", given, 4);
}

std::vector<Setting> SettingsFor(const SetRequest& request) {
  const bool complete = request.value.has_value();
  const bool none = !request.section.has_value();
  if (request.changes ? !none : !complete) {
    const std::string hint = request.changes ? "" : HintForTooFew(request);
    throw ToolError(kExitUsage, "give either SECTION, OPTION and VALUE or --from CHANGES",
                    hint.empty() ? "see: quarry-config set --help" : hint);
  }
  if (request.changes) return ReadChanges(request);
  return {{*request.section, *request.option, *request.value}};
}

ExitStatus RunSet(const SetRequest& request) {
  const std::vector<Setting> settings = SettingsFor(request);
  RequirePassword(settings);
  const MadeEdit made = MakeEdit(request.target, [&](const std::string& text) {
    for (const Setting& setting : settings) settings::RequireRoundTrip(setting);
    settings::Document document = OpenDocument(request.target.file, text);
    return settings::WithSettings(&document, settings);
  });
  WarnOfCarriageReturns(request.target.file, made.edited, settings);
  WarnOfPlainPassword(settings);
  return made.status;
}

}  // namespace

Declaration DeclareSet() {
  const auto request = std::make_shared<SetRequest>();
  std::vector<Word> words = {
      Argument("FILE", ValueKind::kFile, &request->target.file, "File to edit"),
      OptionalArgument("SECTION", ValueKind::kSection, &request->section, "The section"),
      OptionalArgument("OPTION", ValueKind::kOption, &request->option, "Its option"),
      OptionalArgument("VALUE", ValueKind::kText, &request->value, "The option's new value"),
      Option("--from", "CHANGES", ValueKind::kFile, &request->changes,
             "Set all options of this file, or none"),
      Flag("--create", &request->target.create, "Make a new file when there is none"),
  };
  AddEditWords(&request->target, &words);
  return {std::move(words), BindRequest(request, RunSet)};
}

}  // namespace quarry::tool
