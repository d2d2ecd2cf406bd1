#include "tools/check/client_checks.h"

#include "settings/document.h"
#include "settings/error.h"
#include "settings/suggestions.h"
#include "tools/check/program_checks.h"
#include "tools/check/program_rules.h"

namespace quarry::tool {

using settings::Finding;
using settings::FindingAt;
using settings::OriginMap;

namespace {

constexpr char kSection[] = "lynx";
constexpr char kOption[] = "ingest_mode";

std::vector<Finding> CheckIngestMode(const settings::ScannedLine& line) {
  const std::string_view value = line.option.value;
  if (value == "on" || value == "off") return {};
  const std::string_view part = value.empty() ? line.option.name : value;
  return {FindingAt(rules::kIngestMode, line, part, rules::kIngestMode.meaning,
                    "write \"on\" or \"off\", in just these letters")};
}

// For a text without the section.
std::vector<Finding> CheckNearSections(const OriginMap& origins) {
  std::vector<Finding> findings;
  for (const auto& [name, section] : origins) {
    if (settings::SuggestNames(name, {kSection}).empty()) continue;
    findings.push_back(FindingAt(rules::kUnknownSection, section.header, section.header.header.name,
                                 rules::kUnknownSection.meaning,
                                 "did you mean " + settings::Quoted(kSection) + "?"));
  }
  return findings;
}

Finding AbsentIngestMode(const std::string& text, const OriginMap& origins) {
  settings::Document document("", std::string(text));
  return FindingForAbsent(rules::kSettingOmitted, origins, kSection, rules::kSettingOmitted.meaning,
                          HintForAbsent(kSection, kOption, &document));
}

}  // namespace

std::vector<Finding> CheckForClient(const std::string& text, bool mention_absent) {
  const OriginMap origins = settings::FindOrigins(text);
  const auto section = origins.find(kSection);
  std::vector<Finding> findings =
      section == origins.end()
          ? CheckNearSections(origins)
          : FindUnknownOptions(origins, kSection, {kOption}, "a client does not use this option");
  const bool is_set = section != origins.end() && section->second.options.count(kOption) > 0;
  if (!is_set && mention_absent) findings.push_back(AbsentIngestMode(text, origins));
  if (!is_set) return findings;
  const auto mode = CheckIngestMode(section->second.options.at(kOption));
  findings.insert(findings.end(), mode.begin(), mode.end());
  return findings;
}

}  // namespace quarry::tool
