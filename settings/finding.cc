#include "settings/finding.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace quarry::settings {

Finding FindingWithoutLine(const Rule& rule, std::string message, std::string hint) {
  Finding finding;
  finding.rule = &rule;
  finding.message = std::move(message);
  finding.hint = std::move(hint);
  return finding;
}

Finding FindingAt(const Rule& rule, const ScannedLine& line, std::string_view part,
                  std::string message, std::string hint) {
  const auto offset = static_cast<std::size_t>(part.data() - line.raw.data());
  Finding finding = FindingWithoutLine(rule, std::move(message), std::move(hint));
  finding.line = line.number;
  finding.column = offset + 1;
  finding.length = part.size();
  finding.line_text = line.raw;
  return finding;
}

bool HasErrors(const std::vector<Finding>& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& one) { return one.IsError(); });
}

void SortFindings(std::vector<Finding>* findings) {
  std::stable_sort(findings->begin(), findings->end(),
                   [](const Finding& left, const Finding& right) {
                     return std::tie(left.line, left.column) < std::tie(right.line, right.column);
                   });
}

}  // namespace quarry::settings
