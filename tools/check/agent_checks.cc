#include "tools/check/agent_checks.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <set>
#include <string>
#include <utility>

#include "settings/document.h"
#include "tools/check/agent_advice.h"
#include "tools/check/program_checks.h"
#include "tools/check/program_rules.h"
#include "tools/check/routing_targets.h"

namespace quarry::tool {

using settings::Finding;
using settings::FindingAt;
using settings::ScannedLine;

namespace {

class AgentChecker {
 public:
  // Borrows the text.
  AgentChecker(const std::string& text, const std::string& file, bool no_key)
      : document_(file, std::string(text)),
        origins_(settings::FindOrigins(text)),
        no_key_(no_key) {}

  std::vector<Finding> Check();

 private:
  void CheckPresence(AgentSetting setting);
  void CheckEmptiness(AgentSetting setting);
  void CheckUnknownOptions(const std::string& section);
  void CheckNumber();
  void CheckPasswordForm();
  void CheckKeyFolder();
  void CheckPassword();
  void CheckKey();
  void CheckRoutingTables();
  void AddPassword(const Advice& advice);
  void AddAboutKey(const settings::Rule& rule, const Advice& advice);

  bool Has(AgentSetting setting) { return tool::Has(setting, &document_); }
  const ScannedLine& LineOf(AgentSetting setting) const;

  settings::Document document_;
  const settings::OriginMap origins_;
  const bool no_key_;
  std::vector<Finding> findings_;
};

std::vector<Finding> AgentChecker::Check() {
  std::set<std::string> sections;
  for (const AgentSettingRow& row : kAgentSettings) {
    if (row.is_required()) CheckPresence(row.setting);
    if (sections.insert(row.section_name()).second) CheckUnknownOptions(row.section_name());
  }
  CheckNumber();
  CheckRoutingTables();
  const bool has_key = !no_key_ && Has(AgentSetting::kKeyDir);
  if (has_key) CheckKeyFolder();
  if (!Has(AgentSetting::kPassword)) {
    if (has_key) CheckKey();
  } else if (has_key) {
    CheckPassword();
  } else {
    CheckPasswordForm();
  }
  return std::move(findings_);
}

const ScannedLine& AgentChecker::LineOf(AgentSetting setting) const {
  const AgentSettingRow& row = RowOf(setting);
  return origins_.at(row.section_name()).options.at(row.option_name());
}

void AgentChecker::CheckPresence(AgentSetting setting) {
  if (Has(setting)) return CheckEmptiness(setting);
  const Advice advice = AdviceForAbsent(setting, &document_);
  findings_.push_back(FindingForAbsent(rules::kSettingAbsent, origins_,
                                       RowOf(setting).section_name(), advice.message, advice.hint));
}

void AgentChecker::CheckEmptiness(AgentSetting setting) {
  const ScannedLine& line = LineOf(setting);
  if (!line.option.value.empty()) return;
  findings_.push_back(FindingAt(rules::kSettingEmpty, line, line.option.name,
                                rules::kSettingEmpty.meaning, "write a value after the \"=\""));
}

void AgentChecker::CheckUnknownOptions(const std::string& section) {
  std::list<std::string> known;
  for (const AgentSettingRow& row : kAgentSettings) {
    if (row.section_name() == section) known.emplace_back(row.option_name());
  }
  const auto unknown =
      FindUnknownOptions(origins_, section, known, "an agent start does not use this option");
  findings_.insert(findings_.end(), unknown.begin(), unknown.end());
}

void AgentChecker::CheckNumber() {
  if (!Has(AgentSetting::kNumericOption)) return;
  const ScannedLine& line = LineOf(AgentSetting::kNumericOption);
  const std::string value(line.option.value);
  errno = 0;
  char* end = nullptr;
  const long number = std::strtol(value.c_str(), &end, 10);
  const auto parsed = static_cast<std::int32_t>(number);
  const bool whole = !value.empty() && end == value.data() + value.size();
  if (whole && errno == 0 && parsed == number) return;
  findings_.push_back(FindingAt(rules::kNumber, line, line.option.value,
                                (whole ? "number does not fit 32 bits" : "value is not a number") +
                                    std::string(": an agent reads ") + std::to_string(parsed),
                                "write a number from -2147483648 to 2147483647"));
}

void AgentChecker::CheckPasswordForm() {
  const DecryptResult result = TryPasswordForm(&document_);
  if (result != kDecryptDone) AddPassword(AdviceForResult(result, &document_));
}

void AgentChecker::CheckKeyFolder() {
  const auto advice = AdviceForKeyFolder(&document_);
  if (advice) AddAboutKey(rules::kKeyFolder, *advice);
}

void AgentChecker::CheckPassword() {
  const int result = TryPassword(&document_);
  if (result == kDecryptDone) return;
  const bool about_key =
      result == kDecryptNoKeyFile || result == kDecryptKeyTooOpen || result == kDecryptNotAKeyFile;
  const Advice advice = AdviceForPassword(result, &document_);
  if (about_key) {
    AddAboutKey(rules::kKeyFile, advice);
    return CheckPasswordForm();
  }
  AddPassword(advice);
  // A password in another form is found before the key is looked at.
  if (result == kDecryptNotSealed) CheckKey();
}

void AgentChecker::CheckKey() {
  const DecryptResult result = TryKey(&document_);
  if (result != kDecryptDone) AddAboutKey(rules::kKeyFile, AdviceForResult(result, &document_));
}

void AgentChecker::CheckRoutingTables() {
  for (const Advice& advice : AdviceForRoutingTargets()) {
    findings_.push_back(
        settings::FindingWithoutLine(rules::kRoutingTable, advice.message, advice.hint));
  }
}

void AgentChecker::AddPassword(const Advice& advice) {
  const ScannedLine& line = LineOf(AgentSetting::kPassword);
  findings_.push_back(
      FindingAt(rules::kPassword, line, line.option.value, advice.message, advice.hint));
}

void AgentChecker::AddAboutKey(const settings::Rule& rule, const Advice& advice) {
  const ScannedLine& line = LineOf(AgentSetting::kKeyDir);
  findings_.push_back(FindingAt(rule, line, line.option.value, advice.message, advice.hint));
}

}  // namespace

std::vector<Finding> CheckForAgent(const std::string& text, const std::string& file, bool no_key) {
  return AgentChecker(text, file, no_key).Check();
}

}  // namespace quarry::tool
