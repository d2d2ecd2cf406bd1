// How a command ends when it cannot do what it was asked.
#ifndef QUARRY_TOOLS_ERRORS_H_
#define QUARRY_TOOLS_ERRORS_H_

#include <string>
#include <utility>

namespace quarry::tool {

enum ExitStatus {
  kExitDone = 0,
  kExitNo = 1,      // the answer is no: errors found, an option absent
  kExitUsage = 2,   // the command line is wrong
  kExitFailed = 3,  // it could not be done: a file unreadable or invalid
};

// Thrown by commands and their helpers, caught in main.
class ToolError {
 public:
  // `report` goes to standard error as it is; it ends in a line feed.
  ToolError(ExitStatus exit_status, std::string report)
      : exit_status_(exit_status), report_(std::move(report)) {}

  ExitStatus exit_status() const { return exit_status_; }
  const std::string& report() const { return report_; }
  // The first line, without the program's name.
  std::string message() const;

 private:
  ExitStatus exit_status_;
  std::string report_;
};

// "quarry-config: MESSAGE" and, when there is one, "  hint: HINT".
std::string ErrorReport(const std::string& message, const std::string& hint = "");

// The end of a system call: "cannot VERB WHAT: " and the text of
// `error_number`.
ToolError SystemError(const std::string& verb, const std::string& what, int error_number,
                      const std::string& hint = "");

// To standard error. That it fails is nothing to report: there is no place
// left.
void WriteStandardError(const std::string& text);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_ERRORS_H_
