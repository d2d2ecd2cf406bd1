#include "tools/check_agent.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <set>
#include <utility>

#include "dmconfig/config.h"
#include "platform/cr_runtime.h"
#include "tools/agent_settings.h"
#include "tools/display.h"
#include "tools/model_file.h"
#include "tools/nearest.h"
#include "tools/scan.h"

namespace quarry::tool {

namespace {

class AgentChecker {
 public:
  AgentChecker(const std::string& text, const std::string& file)
      : model_(file, text), origins_(FindOrigins(text)) {}

  std::vector<Finding> Check();

 private:
  void CheckPresence(const AgentSetting& setting);
  void CheckUnknownOptions(const std::string& section);
  void CheckNumber();
  void CheckPassword();
  void AddPassword(const Advice& advice);
  void AddKeyFile(const Advice& advice);

  bool Has(const AgentSetting& setting);
  const ScannedLine& LineOf(const char* accessor) const;

  ModelFile model_;
  const OriginMap origins_;
  std::vector<Finding> findings_;
};

std::vector<Finding> AgentChecker::Check() {
  std::set<std::string> sections;
  for (const AgentSetting& setting : AgentSettings()) {
    CheckPresence(setting);
    if (sections.insert(setting.section).second) {
      CheckUnknownOptions(setting.section);
    }
  }
  CheckNumber();
  if (Has(AgentSettingOf("cr_password")) && Has(AgentSettingOf("ssl_key_dir"))) {
    CheckPassword();
  }
  return std::move(findings_);
}

bool AgentChecker::Has(const AgentSetting& setting) {
  return model_.Has(setting.section, setting.option);
}

const ScannedLine& AgentChecker::LineOf(const char* accessor) const {
  const AgentSetting& setting = AgentSettingOf(accessor);
  return origins_.at(setting.section).options.at(setting.option);
}

void AgentChecker::CheckPresence(const AgentSetting& setting) {
  if (!setting.required || Has(setting)) return;
  const Advice advice = AbsentSettingAdvice(setting, &model_);
  const auto section = origins_.find(setting.section);
  if (section == origins_.end()) {
    Finding finding;
    finding.rule = &rules::kSettingAbsent;
    finding.message = advice.message;
    finding.hint = advice.hint;
    findings_.push_back(finding);
    return;
  }
  const ScannedLine& header = section->second.header;
  findings_.push_back(
      FindingAt(rules::kSettingAbsent, header, header.header.name, advice.message, advice.hint));
}

void AgentChecker::CheckUnknownOptions(const std::string& section) {
  const auto origin = origins_.find(section);
  if (origin == origins_.end()) return;
  std::set<std::string, storage::dmconfig::StringCaseCmp> known;
  for (const AgentSetting& setting : AgentSettings()) {
    if (setting.section == section) known.insert(setting.option);
  }
  for (const auto& [name, line] : origin->second.options) {
    if (known.count(name) > 0) continue;
    const auto near = NearestNames(name, std::list<std::string>(known.begin(), known.end()));
    findings_.push_back(FindingAt(rules::kUnknownSetting, line, line.option.name,
                                  rules::kUnknownSetting.meaning,
                                  near.empty() ? "keep it in a section of its own"
                                               : "nearest that it takes: " + Quoted(near.front())));
  }
}

void AgentChecker::CheckNumber() {
  if (!Has(AgentSettingOf("numeric_option"))) return;
  const ScannedLine& line = LineOf("numeric_option");
  const std::string value(line.option.value);
  errno = 0;
  char* end = nullptr;
  const long number = std::strtol(value.c_str(), &end, 10);
  const auto taken = static_cast<std::int32_t>(number);
  const bool whole = !value.empty() && end == value.data() + value.size();
  if (whole && errno == 0 && taken == number) return;
  findings_.push_back(FindingAt(rules::kNumber, line, line.option.value,
                                (whole ? "number does not fit 32 bits" : "value is not a number") +
                                    std::string(": an agent takes ") + std::to_string(taken),
                                "write a number from -2147483648 to 2147483647"));
}

void AgentChecker::CheckPassword() {
  const int result = TryPassword(&model_);
  if (result == kDecryptDone) return;
  const bool about_key =
      result == kDecryptNoKeyFile || result == kDecryptKeyTooOpen || result == kDecryptNotAKeyFile;
  const Advice advice = PasswordAdvice(result, &model_);
  if (about_key) return AddKeyFile(advice);
  AddPassword(advice);
  // A password in another form is found before the key is looked at.
  const DecryptResult key = TryKey(&model_);
  if (result == kDecryptNotSealed && key != kDecryptDone) {
    AddKeyFile(AdviceOn(key, &model_));
  }
}

void AgentChecker::AddPassword(const Advice& advice) {
  const ScannedLine& line = LineOf("cr_password");
  findings_.push_back(
      FindingAt(rules::kPassword, line, line.option.value, advice.message, advice.hint));
}

void AgentChecker::AddKeyFile(const Advice& advice) {
  const ScannedLine& line = LineOf("ssl_key_dir");
  findings_.push_back(
      FindingAt(rules::kKeyFile, line, line.option.value, advice.message, advice.hint));
}

}  // namespace

std::vector<Finding> CheckAgent(const std::string& text, const std::string& file) {
  return AgentChecker(text, file).Check();
}

}  // namespace quarry::tool
