#include "tools/commands/open_document.h"

#include <algorithm>
#include <list>
#include <utility>
#include <vector>

#include "settings/line_scanner.h"
#include "settings/suggestions.h"
#include "tools/check/check.h"
#include "tools/check/finding_text.h"
#include "tools/terminal/errors.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Document;
using settings::Quoted;
using settings::Snapshot;

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

template <typename Named>
std::list<std::string> NamesOf(const settings::Range<Named>& range) {
  std::list<std::string> names;
  for (const Named& one : range) names.emplace_back(one.name);
  return names;
}

std::string MissingOptionHint(const std::string& section, const std::string& option,
                              const Snapshot& snapshot) {
  for (const settings::Section& other : snapshot.sections()) {
    if (snapshot.Find(other.name, option) == nullptr) continue;
    return "section " + Quoted(other.name) + " has an option of this name";
  }
  return SuggestionHint(option, NamesOf(snapshot.options(section)),
                        ListCommand(snapshot.name(), section));
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

Snapshot OpenSnapshot(const std::string& file) { return OpenSnapshot(file, ReadInput(file)); }

Snapshot OpenSnapshot(const std::string& file, const std::string& text) {
  std::vector<settings::Problem> problems;
  auto snapshot = Snapshot::Parse(file, text, &problems);
  if (!snapshot) ThrowErrorsIn(text, file);
  return *std::move(snapshot);
}

const settings::Section& RequireSection(const std::string& section, const Snapshot& snapshot,
                                        const std::string& hint) {
  const settings::Section* const found = snapshot.FindSection(section);
  if (found != nullptr) return *found;
  const std::string& file = snapshot.name();
  throw ToolError(kExitNo, InputName(file) + ": no section " + Quoted(section),
                  hint.empty()
                      ? SuggestionHint(section, NamesOf(snapshot.sections()), ListCommand(file))
                      : hint);
}

const settings::Option& RequireOption(const std::string& section, const std::string& option,
                                      const Snapshot& snapshot) {
  RequireSection(section, snapshot);
  const settings::Option* const found = snapshot.Find(section, option);
  if (found != nullptr) return *found;
  throw ToolError(kExitNo,
                  InputName(snapshot.name()) + ": no option " + Quoted(option) + " in section " +
                      Quoted(section),
                  MissingOptionHint(section, option, snapshot));
}

std::vector<const settings::Option*> SortedOptions(const settings::Section& section) {
  std::vector<const settings::Option*> sorted;
  sorted.reserve(section.options.size());
  for (const settings::Option& option : section.options) sorted.push_back(&option);
  std::sort(sorted.begin(), sorted.end(), [](const auto* left, const auto* right) {
    return settings::IsNameBefore(left->name, right->name);
  });
  return sorted;
}

}  // namespace quarry::tool
