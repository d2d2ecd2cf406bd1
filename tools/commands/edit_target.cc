#include "tools/commands/edit_target.h"

#include <optional>
#include <utility>

#include "settings/unified_diff.h"
#include "tools/check/finding_text.h"
#include "tools/check/new_findings.h"
#include "tools/check/plain_password.h"
#include "tools/commands/edit_report.h"
#include "tools/terminal/errors.h"
#include "tools/terminal/signal_block.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::EditedText;
using settings::ErrorKind;
using settings::FileReplacement;

namespace {

// What is shown on standard output of an edit; `creates` when there is no file yet.
std::string ShownEdit(const EditTarget& target, const std::string& before, const EditedText& edited,
                      bool creates = false) {
  const std::string name = InputName(target.file);
  if (target.report && creates && edited.edit.empty()) {
    return "added " + EscapeForTerminal(name) + '\n';  // an empty file
  }
  if (target.report) return EditReport(name, before, edited, target.show_secrets);
  const std::string shown_name = EscapeForTerminal(name);
  if (target.show_secrets) return settings::UnifiedDiff(shown_name, before, edited.edit);
  const RedactedChange shown = RedactChange(before, edited.edit);
  return settings::UnifiedDiff(shown_name, shown.text, shown.edit);
}

void RequireNoNewErrors(const EditTarget& target, const std::string& before,
                        const EditedText& edited) {
  if (target.program == Program::kNone || edited.edit.empty()) return;
  const auto findings = NewFindings(before, edited, target.file, target.program);
  auto diagnostics = DiagnosticsOf(findings, target.file);
  if (!settings::HasErrors(findings)) {
    WriteDiagnostics(diagnostics);
    return;
  }
  diagnostics.push_back(
      Message(InputName(target.file) + " was not edited: the edit would bring an error",
              "correct it, or make the edits that belong together in one: set --from"));
  throw ToolError(kExitNo, diagnostics);
}

ExitStatus StatusFor(const EditTarget& target, bool changes_something) {
  return target.exit_code && changes_something ? kExitNo : kExitDone;
}

MadeEdit EditStandardInput(const EditTarget& target, const EditFunction& edit) {
  if (target.report && !target.dry_run) {
    throw ToolError(kExitUsage, "standard output is the edited text, not a report",
                    "give a file's name, or --dry-run");
  }
  const std::string text = ReadInput(target.file);
  EditedText edited = edit(text);
  RequireNoNewErrors(target, text, edited);
  WriteStandardOutput(target.dry_run ? ShownEdit(target, text, edited) : edited.text);
  const ExitStatus status = StatusFor(target, !edited.edit.empty());
  return {std::move(edited), status};
}

void WriteReport(const EditTarget& target, const std::string& report, bool changed_something) {
  try {
    WriteStandardOutput(report);
  } catch (settings::Error& error) {
    if (changed_something) error.hint = "the edit of " + target.file + " is in place";
    throw;
  }
}

// What a user of this program can do beyond what the error says.
std::string HintFor(ErrorKind kind) {
  switch (kind) {
    case ErrorKind::kNotFound:
      return "only quarry-config set --create makes a new file";
    case ErrorKind::kOpenFile:
      return "\"-\" means standard input and output";
    default:
      return "";
  }
}

}  // namespace

void AddEditWords(EditTarget* target, std::vector<Word>* words, const std::string& needs) {
  Word exit_code =
      Flag("--exit-code", &target->exit_code, "End with 1 when the edit would change something");
  exit_code.needs = "--dry-run";
  const Word own[] = {
      ProgramOption(&target->program,
                    "Refuse an edit that brings an error for this program: agent or client"),
      Flag("--report", &target->report, "Show what was changed, one line a change"),
      Flag("--dry-run", &target->dry_run, "Show the edit as a unified diff, do not make it"),
      exit_code,
      ShowSecretsFlag(&target->show_secrets),
  };
  for (const Word& word : own) {
    words->push_back(word);
    if (word.needs.empty()) words->back().needs = needs;
  }
}

MadeEdit MakeEdit(const EditTarget& target, const EditFunction& edit) {
  if (target.file == "-") return EditStandardInput(target, edit);
  FileReplacement::Options options;
  if (target.create) options.new_mode = settings::kUsualMode;
  options.read_only = target.dry_run;
  FileReplacement file = OpenForEdit(target.file, std::move(options));
  EditedText edited = edit(file.text());
  RequireNoNewErrors(target, file.text(), edited);
  const bool changes_something = !file.exists() || !edited.edit.empty();
  if (!target.dry_run) file.Replace(edited.text);
  if (target.dry_run || target.report) {
    const std::string shown = ShownEdit(target, file.text(), edited, !file.exists());
    WriteReport(target, shown, !target.dry_run && changes_something);
  }
  return {std::move(edited), StatusFor(target, changes_something)};
}

FileReplacement OpenForEdit(const std::string& file, FileReplacement::Options options) {
  RequireName(file);
  options.on_wait = [file] {
    WriteDiagnostics({Message("waiting for another edit of " + file + " to end")});
  };
  options.guard = [] { return std::make_shared<ScopedSignalBlock>(); };
  try {
    return {file, std::move(options)};
  } catch (settings::Error& error) {
    if (error.hint.empty()) error.hint = HintFor(error.kind);
    throw;
  }
}

}  // namespace quarry::tool
