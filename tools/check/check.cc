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

std::vector<Finding> CheckForReader(const std::string& text, const std::string& file,
                                    Program program, const ProgramCheckOptions& options) {
  switch (program) {
    case Program::kAgent:
      return CheckForAgent(text, file, options.no_key);
    case Program::kClient:
      return CheckForClient(text, options.mention_absent);
    case Program::kNone:
      break;
  }
  return {};
}

}  // namespace

void HideSecret(Finding* finding, std::size_t secret) {
  finding->secret_offset = secret;
  const std::size_t begin = finding->column - 1;
  if (secret >= begin + finding->length) return;
  finding->column = std::min(begin, secret) + 1;
  finding->length = secret + sizeof kMask - finding->column;
}

std::vector<Finding> CheckForProgram(const std::string& text, const std::string& file,
                                     Program program, const ProgramCheckOptions& options) {
  const SecretLines secrets(text);
  settings::CheckOptions text_options;
  text_options.file_in_commands = file == "-" ? "FILE" : ShellQuotedFile(file);
  text_options.holds_secret = [&secrets](const settings::ScannedLine& line) {
    return secrets.Find(line.number, line.raw) != std::string_view::npos;
  };
  std::vector<Finding> findings = settings::CheckText(text, text_options);
  if (!settings::HasErrors(findings)) {
    const std::vector<Finding> more = CheckForReader(text, file, program, options);
    findings.insert(findings.end(), more.begin(), more.end());
  }
  for (Finding& finding : findings) {
    if (finding.line != 0) HideSecret(&finding, secrets.Find(finding.line, finding.line_text));
  }
  settings::SortFindings(&findings);
  return findings;
}

}  // namespace quarry::tool
