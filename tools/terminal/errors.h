// Messages to the user, and how a command ends that cannot do what it was asked.
#ifndef QUARRY_TOOLS_TERMINAL_ERRORS_H_
#define QUARRY_TOOLS_TERMINAL_ERRORS_H_

#include <cstddef>
#include <string>
#include <vector>

#include "settings/error.h"

namespace quarry::tool {

enum ExitStatus {
  kExitDone = 0,
  kExitNo = 1,      // the answer is no: errors found, an option absent
  kExitUsage = 2,   // the command line is wrong
  kExitFailed = 3,  // it could not be done: a file unreadable or invalid
};

// One message. Its texts are as the user or a file gave them; FormatDiagnostic escapes them.
struct Diagnostic {
  // A quoted line and the bytes in it that the message is about. Number 0: no line is quoted.
  struct Quotation {
    std::size_t number = 0;
    std::string line;
    std::size_t offset = 0;
    std::size_t length = 0;
  };

  std::string message;
  std::vector<std::string> hints;  // remedies
  bool is_warning = false;
  std::string place;  // "FILE:14:1"; may be empty
  Quotation quotation;
};

Diagnostic Message(std::string message, const std::string& hint = "");
Diagnostic Warning(std::string message, const std::string& hint = "");

// The diagnostic as standard error shows it, several lines:
//   quarry-config: FILE:14:1: option line without "="
//     14 | threads 4
//        | ^~~~~~~~~
//     hint: write "threads = 4"
// The quoted line is cut to fit into `columns`.
std::string FormatDiagnostic(const Diagnostic& diagnostic, bool coloured, std::size_t columns);

// To standard error, in colours where it supports them.
void WriteDiagnostics(const std::vector<Diagnostic>& diagnostics);

// Text to standard error. A failure is ignored, for there is no place left to report it.
void WriteStandardError(const std::string& text);

// Thrown by commands and caught in main, which writes the diagnostics and exits with the status.
class ToolError : public settings::Error {
 public:
  ToolError(ExitStatus exit_status, const std::string& text, const std::string& remedy = "");
  // At least one diagnostic.
  ToolError(ExitStatus exit_status, std::vector<Diagnostic> diagnostics);

  ExitStatus exit_status() const { return exit_status_; }
  const std::vector<Diagnostic>& diagnostics() const { return diagnostics_; }

 private:
  ExitStatus exit_status_;
  std::vector<Diagnostic> diagnostics_;
};

// The status and the messages with which the program ends after a failure, its own or one of
// settings/.
ExitStatus ExitStatusOf(const settings::Error& error);
std::vector<Diagnostic> DiagnosticsOf(const settings::Error& error);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_ERRORS_H_
