// set and unset.

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "platform/local/sealed_password.h"
#include "tools/agent_settings.h"
#include "tools/check_as.h"
#include "tools/checked_edit.h"
#include "tools/commands.h"
#include "tools/display.h"
#include "tools/errors.h"
#include "tools/file_edit.h"
#include "tools/files.h"
#include "tools/model_file.h"
#include "tools/scan.h"
#include "tools/unified_diff.h"

namespace quarry::tool {

using storage::dmconfig::LineKind;
using storage::dmconfig::StringCaseCmp;

namespace {

// Where an edit takes its text from and what becomes of the result.
struct Target {
  std::string file;
  bool create;
  bool dry_run;
};

using Editor = std::function<EditedText(std::string text)>;

std::string DiffOf(const std::string& file, const EditedText& edited) {
  return UnifiedDiff(DisplayName(file), edited.before, edited.edit);
}

// The result is for warnings.
EditedText MakeEdit(const Target& target, const Editor& edit) {
  if (target.file == "-") {
    EditedText edited = edit(ReadInput(target.file));
    WriteStandardOutput(target.dry_run ? DiffOf(target.file, edited) : edited.text);
    return edited;
  }
  FileEdit file(target.file, target.create ? std::optional<mode_t>(kUsualMode) : std::nullopt,
                target.dry_run ? FileEdit::Purpose::kLook : FileEdit::Purpose::kEdit);
  EditedText edited = edit(file.text());
  if (target.dry_run) {
    WriteStandardOutput(DiffOf(target.file, edited));
  } else {
    file.Replace(edited.text);
  }
  return edited;
}

void Warn(const std::string& message, const std::string& hint) {
  WriteStandardError(ErrorReport("warning: " + message, hint));
}

bool EndsInCarriageReturn(std::string_view value) { return !value.empty() && value.back() == '\r'; }

std::size_t CountCarriageReturns(const std::string& text) {
  std::size_t count = 0;
  TextScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) {
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
  Warn(DisplayName(file) +
           " has carriage returns at its line ends: " + std::to_string(count - wanted) +
           (count - wanted == 1 ? " value ends" : " values end") + " in one, which programs see",
       "remove all of them: sed -i 's/\\r$//' " + (file == "-" ? "FILE" : ShellQuotedFile(file)));
}

void WarnOfPlainPassword(const std::vector<Setting>& settings) {
  const AgentSetting& password = AgentSettingOf("cr_password");
  const auto is_plain = [&password](const Setting& setting) {
    return SameName(setting.section, password.section) &&
           SameName(setting.option, password.option) &&
           setting.value.substr(0, platform::kSealedPrefix.size()) != platform::kSealedPrefix;
  };
  if (std::none_of(settings.begin(), settings.end(), is_plain)) return;
  Warn("the value for the agent's password is not sealed",
       "set what this prints: quarry-config seal DIR");
}

// What the text sets, in its order; what it sets again it sets once.
std::vector<Setting> SettingsOf(ModelFile* changes) {
  std::vector<Setting> settings;
  std::map<std::string, std::set<std::string, StringCaseCmp>, StringCaseCmp> seen;
  std::string section;
  TextScanner scanner(changes->text());
  for (ScannedLine line; scanner.Next(&line);) {
    if (line.kind == LineKind::kHeader) section = line.header.name;
    if (line.kind != LineKind::kOption) continue;
    const std::string option(line.option.name);
    if (!seen[section].insert(option).second) continue;
    settings.push_back({section, option, changes->GetValue(section, option)});
  }
  return settings;
}

std::vector<Setting> ReadChanges(const SetRequest& request) {
  if (*request.changes == "-" && request.file == "-") {
    throw ToolError(kExitUsage, ErrorReport("standard input cannot be both the file and "
                                            "the changes",
                                            "give the name of one of them"));
  }
  ModelFile changes(*request.changes);
  WriteFindings(CheckText(changes.text(), changes.file()), changes.file());
  return SettingsOf(&changes);
}

std::vector<Setting> SettingsFor(const SetRequest& request) {
  const bool complete = request.value.has_value();
  const bool none = !request.section.has_value();
  if (request.changes ? !none : !complete) {
    throw ToolError(kExitUsage, ErrorReport("give either SECTION, OPTION and VALUE or "
                                            "--from CHANGES",
                                            "see: quarry-config set --help"));
  }
  if (request.changes) return ReadChanges(request);
  return {{*request.section, *request.option, *request.value}};
}

}  // namespace

int RunSet(const SetRequest& request) {
  const std::vector<Setting> settings = SettingsFor(request);
  const EditedText edited = MakeEdit(
      {request.file, request.create, request.dry_run},
      [&](std::string text) { return WithSettings(request.file, std::move(text), settings); });
  WarnOfCarriageReturns(request.file, edited, settings);
  WarnOfPlainPassword(settings);
  return kExitDone;
}

int RunUnset(const UnsetRequest& request) {
  MakeEdit({request.file, false, request.dry_run}, [&](std::string text) {
    return WithoutOption(request.file, std::move(text), request.section, request.option,
                         request.with_comment);
  });
  return kExitDone;
}

}  // namespace quarry::tool
