#include "tools/check_as.h"

#include <algorithm>

#include "tools/check_agent.h"
#include "tools/check_client.h"
#include "tools/errors.h"
#include "tools/terminal.h"

namespace quarry::tool {

std::vector<Finding> CheckAs(const std::string& text, const std::string& file,
                             const std::string& as) {
  std::vector<Finding> findings = CheckText(text, file);
  // What an invalid file holds cannot be told.
  if (as.empty() || HasErrors(findings)) return findings;
  const std::vector<Finding> more = as == "agent" ? CheckAgent(text, file) : CheckClient(text);
  findings.insert(findings.end(), more.begin(), more.end());
  SortFindings(&findings);
  return findings;
}

bool HasErrors(const std::vector<Finding>& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& one) { return one.IsError(); });
}

void WriteFindings(const std::vector<Finding>& findings, const std::string& file) {
  std::string report;
  for (const Finding& finding : findings) {
    report += FindingReport(finding, file, ColoursOnStandardError());
  }
  WriteStandardError(report);
}

}  // namespace quarry::tool
