#include "tools/check/finding_text.h"

#include <map>

#include "tools/terminal/redactor.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"
#include "tools/terminal/utf8.h"

namespace quarry::tool {

using settings::Finding;

namespace {

constexpr std::size_t kMaxShown = 20;  // of one rule

Diagnostic DiagnosticOf(const Finding& finding, const std::string& file) {
  Diagnostic diagnostic = Message(finding.message, finding.hint);
  diagnostic.is_warning = !finding.IsError();
  diagnostic.place = InputName(file);
  if (finding.line == 0) return diagnostic;
  diagnostic.place += ':' + std::to_string(finding.line) + ':' + std::to_string(finding.column);
  diagnostic.quotation = {finding.line, RedactedLine(finding), finding.column - 1, finding.length};
  return diagnostic;
}

Diagnostic DiagnosticOfRest(const settings::Rule& rule, std::size_t count,
                            const std::string& file) {
  Diagnostic diagnostic = Message("and " + std::to_string(count) + " more of rule " + rule.name +
                                  "; check --json shows all of them");
  diagnostic.is_warning = rule.severity == settings::Severity::kWarning;
  diagnostic.place = InputName(file);
  return diagnostic;
}

}  // namespace

std::string RedactedLine(const Finding& finding) {
  if (finding.secret_offset == std::string_view::npos) return std::string(finding.line_text);
  return std::string(finding.line_text.substr(0, finding.secret_offset)) + kMask;
}

std::vector<Diagnostic> DiagnosticsOf(const std::vector<Finding>& findings,
                                      const std::string& file) {
  std::vector<Diagnostic> diagnostics;
  std::map<std::string, std::vector<const Finding*>> by_rule;
  for (const Finding& finding : findings) {
    auto& same = by_rule[finding.rule->name];
    same.push_back(&finding);
    if (same.size() <= kMaxShown) diagnostics.push_back(DiagnosticOf(finding, file));
  }
  for (const auto& [name, same] : by_rule) {
    if (same.size() <= kMaxShown) continue;
    diagnostics.push_back(DiagnosticOfRest(*same.back()->rule, same.size() - kMaxShown, file));
  }
  return diagnostics;
}

const char* LevelOf(const settings::Rule& rule) {
  return rule.severity == settings::Severity::kError ? "error" : "warning";
}

std::string TextOf(const Finding& finding) {
  const std::string message = EscapeForTerminal(finding.message);
  return finding.hint.empty() ? message : message + '\n' + EscapeForTerminal(finding.hint);
}

Columns ColumnsOf(const Finding& finding) {
  const std::string line = RedactedLine(finding);
  const std::size_t before = CountCharacters(line.substr(0, finding.column - 1));
  const std::size_t length = CountCharacters(line.substr(finding.column - 1, finding.length));
  return {before + 1, before + 1 + length};
}

}  // namespace quarry::tool
