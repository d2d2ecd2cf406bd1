#include "tools/check/check.h"

#include <algorithm>

#include "settings/text_checks.h"
#include "tools/check/agent_checks.h"
#include "tools/check/client_checks.h"
#include "tools/check/password_line.h"
#include "tools/terminal/redactor.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Finding;

namespace {

bool HoldsPassword(std::string_view line) { return FindPassword(line) != std::string_view::npos; }

std::vector<Finding> CheckForReader(const std::string& text, const std::string& file,
                                    Program program) {
  switch (program) {
    case Program::kAgent:
      return CheckForAgent(text, file);
    case Program::kClient:
      return CheckForClient(text);
    case Program::kNone:
      break;
  }
  return {};
}

// Lets a finding that reaches into a password end where the mask of the password does.
void HidePassword(Finding* finding) {
  const std::size_t password = FindPassword(finding->line_text);
  const std::size_t begin = finding->column - 1;
  if (password >= begin + finding->length) return;
  finding->column = std::min(begin, password) + 1;
  finding->length = password + sizeof kMask - finding->column;
}

}  // namespace

std::vector<Finding> CheckForProgram(const std::string& text, const std::string& file,
                                     Program program) {
  std::vector<Finding> findings =
      settings::CheckText(text, {file == "-" ? "FILE" : ShellQuotedFile(file), HoldsPassword});
  if (!settings::HasErrors(findings)) {
    const std::vector<Finding> more = CheckForReader(text, file, program);
    findings.insert(findings.end(), more.begin(), more.end());
  }
  for (Finding& finding : findings) {
    if (finding.line != 0) HidePassword(&finding);
  }
  settings::SortFindings(&findings);
  return findings;
}

}  // namespace quarry::tool
