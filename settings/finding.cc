#include "settings/finding.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace quarry::settings {

Finding FindingAt(const Rule& rule, const ScannedLine& line, std::string_view part,
                  std::string message, std::string hint) {
  const auto offset = static_cast<std::size_t>(part.data() - line.raw.data());
  return {&rule,           line.number, offset + 1, part.size(), std::move(message),
          std::move(hint), line.raw};
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
