#include "tools/terminal/errors.h"

#include <unistd.h>

#include <utility>

#include "platform/local/file_descriptor.h"
#include "tools/terminal/terminal.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::ErrorKind;

namespace {

constexpr char kBold[] = "1";
constexpr char kBoldRed[] = "1;31";
constexpr char kBoldMagenta[] = "1;35";

std::string Paint(const char* code, const std::string& text) {
  return "\x1b[" + std::string(code) + 'm' + text + "\x1b[0m";
}

std::string FormatQuotation(const Diagnostic::Quotation& quotation, const char* colour,
                            std::size_t columns) {
  const std::string number = std::to_string(quotation.number);
  const std::string before = "  " + number + " | ";
  const Excerpt excerpt =
      ExcerptOf(quotation.line, quotation.offset, quotation.length, {before.size(), columns});
  return before + excerpt.line + "\n  " + std::string(number.size(), ' ') + " | " +
         (colour == nullptr ? excerpt.marks : Paint(colour, excerpt.marks)) + '\n';
}

std::vector<std::string> HintList(const std::string& hint) {
  return hint.empty() ? std::vector<std::string>() : std::vector<std::string>{hint};
}

}  // namespace

Diagnostic Message(std::string message, const std::string& hint) {
  Diagnostic diagnostic;
  diagnostic.message = std::move(message);
  diagnostic.hints = HintList(hint);
  return diagnostic;
}

Diagnostic Warning(std::string message, const std::string& hint) {
  Diagnostic diagnostic = Message(std::move(message), hint);
  diagnostic.is_warning = true;
  return diagnostic;
}

std::string FormatDiagnostic(const Diagnostic& diagnostic, bool coloured, std::size_t columns) {
  coloured = coloured && !diagnostic.place.empty();
  const char* const colour = !coloured ? nullptr : diagnostic.is_warning ? kBoldMagenta : kBoldRed;
  const auto paint = [coloured](const char* code, const std::string& text) {
    return coloured ? Paint(code, text) : text;
  };
  std::string report = "quarry-config: ";
  if (!diagnostic.place.empty()) {
    report += paint(kBold, EscapeForTerminal(diagnostic.place) + ": ");
  }
  const std::string message = EscapeForTerminal(diagnostic.message);
  report += diagnostic.is_warning ? paint(colour, "warning: ") + message : paint(colour, message);
  report += '\n';
  if (diagnostic.quotation.number != 0)
    report += FormatQuotation(diagnostic.quotation, colour, columns);
  for (const std::string& hint : diagnostic.hints) {
    report += "  hint: " + EscapeForTerminal(hint) + '\n';
  }
  return report;
}

void WriteDiagnostics(const std::vector<Diagnostic>& diagnostics) {
  const bool coloured = SupportsColours();
  const std::size_t columns = StandardErrorColumns();
  std::string report;
  for (const Diagnostic& one : diagnostics) {
    report += FormatDiagnostic(one, coloured, columns);
  }
  WriteStandardError(report);
}

void WriteStandardError(const std::string& text) {
  (void)platform::WriteAll(STDERR_FILENO, text.data(), text.size());
}

ToolError::ToolError(ExitStatus exit_status, const std::string& text, const std::string& remedy)
    : ToolError(exit_status, {Message(text, remedy)}) {}

ToolError::ToolError(ExitStatus exit_status, std::vector<Diagnostic> diagnostics)
    : settings::Error(ErrorKind::kFailed, "", diagnostics.front().message),
      exit_status_(exit_status),
      diagnostics_(std::move(diagnostics)) {}

ExitStatus ExitStatusOf(const settings::Error& error) {
  if (const auto* own = dynamic_cast<const ToolError*>(&error)) return own->exit_status();
  return error.kind == ErrorKind::kRefused ? kExitNo : kExitFailed;
}

std::vector<Diagnostic> DiagnosticsOf(const settings::Error& error) {
  if (const auto* own = dynamic_cast<const ToolError*>(&error)) return own->diagnostics();
  return {Message(error.message, error.hint)};
}

}  // namespace quarry::tool
