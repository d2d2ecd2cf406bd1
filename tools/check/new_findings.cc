#include "tools/check/new_findings.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include "dmconfig/line.h"
#include "settings/line_scanner.h"
#include "tools/check/password_line.h"

namespace quarry::tool {

using settings::Finding;
using settings::LineEdit;
using storage::dmconfig::KindOf;
using storage::dmconfig::LineKind;
using storage::dmconfig::WithoutLeadingBlanks;

namespace {

constexpr std::size_t kNewLine = static_cast<std::size_t>(-1);

// The number before the edit of the line that has this number after it; 0 stays 0.
std::size_t OldNumber(std::size_t number, const settings::TextEdit& edit) {
  std::size_t added = 0, removed = 0;  // lines above
  for (const LineEdit& one : edit) {
    const std::size_t begin = one.line + added - removed;
    if (number < begin) break;
    const std::size_t index = number - begin;
    if (index < one.added.size()) return index < one.removed ? one.line + index : kNewLine;
    added += one.added.size();
    removed += one.removed;
  }
  return number + removed - added;
}

// What tells a finding from others about the same text; `line` is its line's number.
std::string IdentityOf(const Finding& finding, std::size_t line) {
  const bool is_about_option = KindOf(WithoutLeadingBlanks(finding.line_text)) == LineKind::kOption;
  return std::string(finding.rule->name) + ' ' +
         (is_about_option || !finding.IsError() ? std::to_string(line) : finding.message);
}

// An option that is renamed has the same value, which the finding's line must not show when the old
// name is one of a secret.
void HideRenamedSecrets(const std::string& before, const settings::TextEdit& edit,
                        std::vector<Finding>* findings) {
  std::map<std::size_t, std::string_view> secrets;  // by old line numbers
  settings::LineScanner scanner(before);
  for (settings::ScannedLine line; scanner.Next(&line);) {
    const std::size_t secret = FindSecret(line.raw);
    if (secret < line.raw.size()) secrets[line.number] = line.raw.substr(secret);
  }
  for (Finding& finding : *findings) {
    const auto secret = secrets.find(OldNumber(finding.line, edit));
    if (secret == secrets.end() || finding.secret_offset != std::string_view::npos) continue;
    HideSecret(&finding, FindEnd(finding.line_text, secret->second));
    if (finding.hint.find(secret->second) != std::string::npos) finding.hint.clear();
  }
}

}  // namespace

std::vector<Finding> NewFindings(const std::string& before, const settings::EditedText& edited,
                                 const std::string& file, Program program) {
  std::set<std::string> old;
  for (const Finding& finding : CheckForProgram(before, file, program)) {
    old.insert(IdentityOf(finding, finding.line));
  }
  std::vector<Finding> findings = CheckForProgram(edited.text, file, program);
  const auto is_old = [&](const Finding& finding) {
    return old.count(IdentityOf(finding, OldNumber(finding.line, edited.edit))) > 0;
  };
  findings.erase(std::remove_if(findings.begin(), findings.end(), is_old), findings.end());
  HideRenamedSecrets(before, edited.edit, &findings);
  return findings;
}

}  // namespace quarry::tool
