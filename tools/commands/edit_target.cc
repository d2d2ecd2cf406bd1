#include "tools/commands/edit_target.h"

#include <optional>
#include <utility>

#include "settings/unified_diff.h"
#include "tools/check/plain_password.h"
#include "tools/terminal/errors.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::EditedText;
using settings::ErrorKind;
using settings::FileReplacement;

namespace {

std::string DiffFor(const EditTarget& target, const std::string& before,
                    const settings::TextEdit& edit) {
  const std::string name = EscapeForTerminal(InputName(target.file));
  return target.show_secrets
             ? settings::UnifiedDiff(name, before, edit)
             : settings::UnifiedDiff(name, RedactedText(before), RedactedEdit(edit));
}

EditedText EditStandardInput(const EditTarget& target, const EditFunction& edit) {
  const std::string text = ReadInput(target.file);
  EditedText edited = edit(text);
  WriteStandardOutput(target.dry_run ? DiffFor(target, text, edited.edit) : edited.text);
  return edited;
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

EditedText MakeEdit(const EditTarget& target, const EditFunction& edit) {
  if (target.file == "-") return EditStandardInput(target, edit);
  FileReplacement::Options options;
  if (target.create) options.new_mode = settings::kUsualMode;
  options.read_only = target.dry_run;
  FileReplacement file = OpenForEdit(target.file, std::move(options));
  EditedText edited = edit(file.text());
  if (target.dry_run) {
    WriteStandardOutput(DiffFor(target, file.text(), edited.edit));
  } else {
    file.Replace(edited.text);
  }
  return edited;
}

FileReplacement OpenForEdit(const std::string& file, FileReplacement::Options options) {
  RequireName(file);
  options.on_wait = [file] {
    WriteDiagnostics({Message("waiting for another edit of " + file + " to end")});
  };
  try {
    return {file, std::move(options)};
  } catch (settings::Error& error) {
    if (error.hint.empty()) error.hint = HintFor(error.kind);
    throw;
  }
}

}  // namespace quarry::tool
