#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include "tools/check_as.h"
#include "tools/commands.h"
#include "tools/editor.h"
#include "tools/errors.h"
#include "tools/file_edit.h"

namespace quarry::tool {

namespace {

class EditSession {
 public:
  explicit EditSession(const EditRequest& request)
      : request_(request),
        file_(request.file, std::nullopt),
        copy_(std::filesystem::path(request.file).filename(), file_.text()) {}

  // Throws ToolError; the copy stays then, unless it was discarded.
  void Run();

  EditorCopy* copy() { return &copy_; }

 private:
  void AskWhetherToEditAgain();

  const EditRequest& request_;
  FileEdit file_;
  EditorCopy copy_;
};

[[noreturn]] void ThrowNotSaved(ExitStatus status, const std::string& reason,
                                const std::string& hint = "") {
  throw ToolError(status, ErrorReport(reason + "; nothing was saved", hint));
}

constexpr char kInvalid[] = "the edited text has errors";

void EditSession::Run() {
  std::string text;
  for (bool valid = false; !valid;) {
    const bool ended_well = copy_.Edit();
    text = copy_.Read();
    if (text == file_.text()) copy_.Discard();
    if (!ended_well) {
      ThrowNotSaved(kExitFailed, "the editor failed", "VISUAL and EDITOR say which one to run");
    }
    if (text == file_.text()) {
      WriteStandardError("quarry-config: nothing was changed\n");
      return;
    }
    const auto findings = CheckAs(text, request_.file, request_.as);
    WriteFindings(findings, request_.file);
    valid = !HasErrors(findings);
    if (!valid) AskWhetherToEditAgain();
  }
  file_.Replace(text);
  copy_.Discard();
}

// Returns to edit again.
void EditSession::AskWhetherToEditAgain() {
  if (isatty(STDIN_FILENO) != 1) ThrowNotSaved(kExitNo, kInvalid);
  for (;;) {
    // Who ends the program here knows where the text is.
    WriteStandardError("quarry-config: " + std::string(kInvalid) + " (" + copy_.Place() +
                       "): (e)dit again or (d)iscard it? ");
    std::string answer;
    if (!std::getline(std::cin, answer)) ThrowNotSaved(kExitNo, kInvalid);
    if (answer == "e" || answer == "E") return;
    if (answer != "d" && answer != "D") continue;
    copy_.Discard();
    ThrowNotSaved(kExitNo, kInvalid);
  }
}

}  // namespace

int RunEdit(const EditRequest& request) {
  if (request.file == "-") {
    throw ToolError(kExitUsage, ErrorReport("an editor needs a file, not standard input",
                                            "quarry-config set - edits it"));
  }
  EditSession session(request);
  try {
    session.Run();
  } catch (const ToolError& error) {
    if (session.copy()->is_discarded()) throw;
    throw ToolError(error.exit_status(), error.report() + "  hint: the edited text is kept in " +
                                             session.copy()->Place() + '\n');
  }
  return kExitDone;
}

}  // namespace quarry::tool
