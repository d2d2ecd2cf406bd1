#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <string>

#include "tools/check_as.h"
#include "tools/commands.h"
#include "tools/display.h"
#include "tools/editor.h"
#include "tools/errors.h"
#include "tools/file_edit.h"
#include "tools/files.h"

namespace quarry::tool {

namespace {

[[noreturn]] void ThrowNotSaved(ExitStatus status, const std::string& reason,
                                const std::string& hint) {
  throw ToolError(status, ErrorReport(reason + "; nothing was saved", hint));
}

void RunEditor(const std::string& before, EditorCopy* copy) {
  if (copy->Edit()) return;
  const bool changed = copy->Read() != before;
  ThrowNotSaved(kExitFailed, "the editor failed",
                changed ? copy->Keep() : "set VISUAL or EDITOR to another one");
}

// After an editor ended with an invalid text. Returns to edit again.
void AskWhetherToEditAgain(EditorCopy* copy) {
  const std::string reason = "the edited text has errors";
  if (isatty(STDIN_FILENO) != 1) ThrowNotSaved(kExitNo, reason, copy->Keep());
  for (;;) {
    WriteStandardError("quarry-config: " + reason +
                       ": (e)dit again or (d)iscard it? ");
    std::string answer;
    if (!std::getline(std::cin, answer)) {
      ThrowNotSaved(kExitNo, reason, copy->Keep());
    }
    if (answer == "e" || answer == "E") return;
    if (answer == "d" || answer == "D") ThrowNotSaved(kExitNo, reason, "");
  }
}

void Save(const std::string& text, FileEdit* file, EditorCopy* copy) {
  try {
    file->Replace(text);
  } catch (const ToolError& error) {
    throw ToolError(error.exit_status(),
                    error.report() + "  hint: " + copy->Keep() + '\n');
  }
}

}  // namespace

int RunEdit(const EditRequest& request) {
  if (request.file == "-") {
    throw ToolError(kExitUsage,
                    ErrorReport("an editor needs a file, not standard input",
                                "quarry-config set - edits it"));
  }
  FileEdit file(request.file, WhenAbsent::kRefuse);
  EditorCopy copy(std::filesystem::path(request.file).filename(), file.text());
  std::string text;
  for (bool valid = false; !valid;) {
    RunEditor(file.text(), &copy);
    text = copy.Read();
    if (text == file.text()) {
      WriteStandardError("quarry-config: nothing was changed\n");
      return kExitDone;
    }
    const auto findings = CheckAs(text, request.file, request.as);
    WriteFindings(findings, request.file);
    valid = !HasErrors(findings);
    if (!valid) AskWhetherToEditAgain(&copy);
  }
  Save(text, &file, &copy);
  return kExitDone;
}

}  // namespace quarry::tool
