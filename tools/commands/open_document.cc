#include "tools/commands/open_document.h"

#include <algorithm>
#include <list>
#include <utility>
#include <vector>

#include "settings/suggestions.h"
#include "tools/check/check.h"
#include "tools/check/finding_text.h"
#include "tools/terminal/errors.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Document;
using settings::Quoted;

namespace {

// Throws ToolError (kExitFailed) with all errors that check finds in a text that is not valid.
[[noreturn]] void ThrowErrorsIn(const std::string& text, const std::string& file) {
  std::vector<settings::Finding> findings = CheckForProgram(text, file, Program::kNone);
  const auto is_warning = [](const settings::Finding& finding) { return !finding.IsError(); };
  findings.erase(std::remove_if(findings.begin(), findings.end(), is_warning), findings.end());
  throw ToolError(kExitFailed, DiagnosticsOf(findings, file));
}

// "did you mean "a", "b"?", or where to see all names when none is near.
std::string SuggestionHint(const std::string& wanted, const std::list<std::string>& names,
                           const std::string& list_command) {
  std::string hint;
  for (const std::string& name : settings::SuggestNames(wanted, names)) {
    hint += (hint.empty() ? "did you mean " : ", ") + Quoted(name);
  }
  return hint.empty() ? "see all names with: " + list_command : hint + '?';
}

std::string ListCommand(const std::string& file, const std::string& section = "") {
  std::string command = "quarry-config list ";
  if (section.substr(0, 1) == "-") command += "-- ";
  command += file == "-" ? file : ShellQuotedFile(file);
  return section.empty() ? command : command + ' ' + ShellQuoted(section);
}

std::string MissingOptionHint(const std::string& section, const std::string& option,
                              Document* document) {
  for (const std::string& other : document->Sections()) {
    if (!document->Has(other, option)) continue;
    return "section " + Quoted(other) + " has an option of this name";
  }
  return SuggestionHint(option, document->Options(section), ListCommand(document->file(), section));
}

}  // namespace

Document OpenDocument(const std::string& file) { return OpenDocument(file, ReadInput(file)); }

Document OpenDocument(const std::string& file, std::string text) {
  try {
    return {file, std::move(text)};
  } catch (const settings::Error& error) {
    if (error.kind != settings::ErrorKind::kInvalidText) throw;
    ThrowErrorsIn(text, file);  // which was not moved from
  }
}

settings::Snapshot OpenSnapshot(const std::string& file, const std::string& text) {
  std::vector<settings::Problem> problems;
  auto snapshot = settings::Snapshot::Parse(file, text, &problems);
  if (!snapshot) ThrowErrorsIn(text, file);
  return *snapshot;
}

void RequireSection(const std::string& section, Document* document, const std::string& hint) {
  if (document->HasSection(section)) return;
  const std::string& file = document->file();
  throw ToolError(
      kExitNo, InputName(file) + ": no section " + Quoted(section),
      hint.empty() ? SuggestionHint(section, document->Sections(), ListCommand(file)) : hint);
}

const std::string& RequireOption(const std::string& section, const std::string& option,
                                 Document* document) {
  RequireSection(section, document);
  const auto* const found = document->Find(section, option);
  if (found != nullptr) return found->value;
  throw ToolError(kExitNo,
                  InputName(document->file()) + ": no option " + Quoted(option) + " in section " +
                      Quoted(section),
                  MissingOptionHint(section, option, document));
}

}  // namespace quarry::tool
