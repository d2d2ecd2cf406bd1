#include <algorithm>

#include "tools/check_as.h"
#include "tools/check_report.h"
#include "tools/commands.h"
#include "tools/errors.h"
#include "tools/files.h"
#include "tools/progress.h"
#include "tools/terminal.h"

namespace quarry::tool {

namespace {

struct Totals {
  std::size_t files = 0;
  std::size_t errors = 0;
  std::size_t warnings = 0;
  std::size_t unreadable = 0;  // not among the files

  void Count(const std::vector<Finding>& findings) {
    const auto count = static_cast<std::size_t>(
        std::count_if(findings.begin(), findings.end(),
                      [](const Finding& finding) { return finding.IsError(); }));
    ++files;
    errors += count;
    warnings += findings.size() - count;
  }
};

std::string Counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

// "2 files, no errors" or "1 file, 2 errors, 1 warning".
std::string Summary(const Totals& totals) {
  std::string text = Counted(totals.files, "file") + ", " +
                     (totals.errors == 0 ? "no errors" : Counted(totals.errors, "error"));
  if (totals.unreadable > 0) {
    text += ", " + std::to_string(totals.unreadable) + " not read";
  }
  if (totals.warnings > 0) text += ", " + Counted(totals.warnings, "warning");
  return text + '\n';
}

int ExitStatusOf(const Totals& totals, bool strict) {
  if (totals.unreadable > 0) return kExitFailed;
  const bool refused = totals.errors > 0 || (strict && totals.warnings > 0);
  return refused ? kExitNo : kExitDone;
}

}  // namespace

int RunCheck(const CheckRequest& request) {
  Totals totals;
  Progress progress("files checked", request.files.size());
  const auto report = MakeCheckReport(request.format);
  for (const std::string& file : request.files) {
    try {
      const std::string text = ReadInput(file);
      const std::vector<Finding> findings = CheckAs(text, file, request.as);
      totals.Count(findings);
      if (!findings.empty()) progress.Clear();
      report->AddFile(file, findings);
    } catch (const ToolError& error) {
      // One file that cannot be read does not keep the others unchecked.
      progress.Clear();
      WriteStandardError(error.report());
      report->AddUnreadable(file, error);
      ++totals.unreadable;
    }
    progress.Step();
  }
  progress.Clear();
  report->Finish();
  if (request.format == "text" && IsStandardOutputTerminal()) {
    WriteStandardOutput(Summary(totals));
  }
  return ExitStatusOf(totals, request.strict);
}

}  // namespace quarry::tool
