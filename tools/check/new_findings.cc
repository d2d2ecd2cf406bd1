#include "tools/check/new_findings.h"

#include <algorithm>
#include <set>

#include "settings/line_scanner.h"

namespace quarry::tool {

using settings::Finding;
using storage::dmconfig::LineKind;

namespace {

constexpr char kBetween = '\n';  // which no name holds

// What tells the findings about a text apart.
class Identities {
 public:
  explicit Identities(const std::string& text);

  std::string Of(const Finding& finding) const;

 private:
  struct Place {
    std::string section;
    std::string option;  // empty in a line that is no option
  };
  std::vector<Place> places_;  // by line numbers
};

Identities::Identities(const std::string& text) : places_(1) {
  std::string section;
  settings::LineScanner scanner(text);
  for (settings::ScannedLine line; scanner.Next(&line);) {
    if (line.kind == LineKind::kHeader) section = settings::Folded(line.header.name);
    const bool is_option = line.kind == LineKind::kOption;
    places_.push_back({section, is_option ? settings::Folded(line.option.name) : ""});
  }
}

std::string Identities::Of(const Finding& finding) const {
  const Place& place = places_[finding.line];
  const std::string rule = std::string(finding.rule->name) + kBetween;
  if (!place.option.empty()) return rule + place.section + kBetween + place.option;
  return rule + (finding.IsError() ? finding.message : place.section);
}

}  // namespace

std::vector<Finding> NewFindings(const std::string& before, const std::string& after,
                                 const std::string& file, Program program) {
  std::set<std::string> old;
  const Identities old_identities(before), new_identities(after);
  for (const Finding& finding : CheckForProgram(before, file, program)) {
    old.insert(old_identities.Of(finding));
  }
  std::vector<Finding> findings = CheckForProgram(after, file, program);
  const auto is_old = [&](const Finding& finding) {
    return old.count(new_identities.Of(finding)) > 0;
  };
  findings.erase(std::remove_if(findings.begin(), findings.end(), is_old), findings.end());
  return findings;
}

}  // namespace quarry::tool
