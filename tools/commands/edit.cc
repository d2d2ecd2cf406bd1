// quarry-config edit

#include <unistd.h>

#include <filesystem>
#include <iostream>

#include "tools/check/finding_text.h"
#include "tools/commands/command.h"
#include "tools/commands/edit_target.h"
#include "tools/terminal/editor.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

namespace {

struct EditRequest {
  std::string file;
  Program program = Program::kNone;
};

class EditSession {
 public:
  explicit EditSession(const EditRequest& request)
      : request_(request),
        file_(OpenForEdit(request.file, {})),
        copy_(std::filesystem::path(request.file).filename(), file_.text()) {}

  // Throws settings::Error; the copy stays then, unless it was discarded.
  void Run();

  EditorCopy* copy() { return &copy_; }

 private:
  void AskWhetherToEditAgain();

  const EditRequest& request_;
  settings::FileReplacement file_;
  EditorCopy copy_;
};

[[noreturn]] void ThrowNotSaved(ExitStatus status, const std::string& reason,
                                const std::string& hint = "") {
  throw ToolError(status, reason + "; nothing was saved", hint);
}

constexpr char kInvalid[] = "the edited text has errors";

void EditSession::Run() {
  std::string text;
  for (bool valid = false; !valid;) {
    const bool succeeded = copy_.Edit();
    text = copy_.Read();
    if (text == file_.text()) copy_.Discard();
    if (!succeeded) {
      ThrowNotSaved(kExitFailed, "the editor failed", "VISUAL and EDITOR say which one to run");
    }
    if (text == file_.text()) {
      WriteStandardError("quarry-config: nothing was changed\n");
      return;
    }
    const auto findings = CheckForProgram(text, request_.file, request_.program);
    WriteDiagnostics(DiagnosticsOf(findings, request_.file));
    valid = !settings::HasErrors(findings);
    if (!valid) AskWhetherToEditAgain();
  }
  file_.Replace(text);
  copy_.Discard();
}

// Returns when the answer is to edit again.
void EditSession::AskWhetherToEditAgain() {
  if (isatty(STDIN_FILENO) != 1) ThrowNotSaved(kExitNo, kInvalid);
  for (;;) {
    // The question names the copy, for a user who ends the program here.
    WriteStandardError("quarry-config: " + std::string(kInvalid) + " (" +
                       EscapeForTerminal(copy_.path()) + "): (e)dit again or (d)iscard it? ");
    std::string answer;
    if (!std::getline(std::cin, answer)) ThrowNotSaved(kExitNo, kInvalid);
    if (answer == "e" || answer == "E") return;
    if (answer != "d" && answer != "D") continue;
    copy_.Discard();
    ThrowNotSaved(kExitNo, kInvalid);
  }
}

ExitStatus RunEdit(const EditRequest& request) {
  if (request.file == "-") {
    throw ToolError(kExitUsage, "an editor needs a file, not standard input",
                    "quarry-config set - edits it");
  }
  EditSession session(request);
  try {
    session.Run();
  } catch (const settings::Error& error) {
    if (session.copy()->is_discarded()) throw;
    std::vector<Diagnostic> diagnostics = DiagnosticsOf(error);
    diagnostics.back().hints.push_back("the edited text is kept in " + session.copy()->path());
    throw ToolError(ExitStatusOf(error), diagnostics);
  }
  return kExitDone;
}

}  // namespace

Declaration DeclareEdit() {
  const auto request = std::make_shared<EditRequest>();
  return {
      {
          Argument("FILE", ValueKind::kFile, &request->file, "File to edit"),
          ProgramOption(&request->program, "Check also what this program needs: agent or client"),
      },
      BindRequest(request, RunEdit)};
}

}  // namespace quarry::tool
