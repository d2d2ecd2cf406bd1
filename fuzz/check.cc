// Promise: `check` finds an error exactly when the library refuses the text,
// the first one on the line where it stops; its reports are fit for a terminal.
#include "tools/check/check.h"

#include <algorithm>

#include "fuzz/reference_reader.h"
#include "fuzz/target.h"
#include "tools/check/finding_text.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::fuzz {

namespace {

using settings::Finding;

// Printable, but for line feeds and the tabs of a quoted line.
bool IsFitForATerminal(std::string report) {
  for (char& c : report) c = c == '\n' || c == '\t' ? ' ' : c;
  return tool::EscapeForTerminal(report) == report;
}

}  // namespace

void TryInput(const std::string& input) {
  const std::string& text = input;
  const Reading reading = ReadText(text);

  const CerrCapture cerr;
  storage::dmconfig::DMConfig model;
  const bool loads = Load(text, &model) == 0;
  const std::vector<Finding> findings = tool::CheckForProgram(text, "a file", tool::Program::kNone);
  const auto first = std::find_if(findings.begin(), findings.end(),
                                  [](const Finding& finding) { return finding.IsError(); });
  Require((first == findings.end()) == loads, "errors are what the library refuses");
  if (!loads) {
    const auto stop = text.begin() + static_cast<std::ptrdiff_t>(reading.consumed);
    const auto line =
        static_cast<std::size_t>(std::count(text.begin(), stop, '\n')) + (reading.end_seen ? 1 : 0);
    Require(first->line == line, "the first error is where the library stops");
  }
  Saw(loads ? findings.empty() ? "clean" : "warned" : "refused");
  for (const Finding& finding : findings) {
    Require(finding.line > 0 && finding.column > 0 && finding.length > 0, "a finding is somewhere");
    const tool::Diagnostic diagnostic = tool::DiagnosticsOf({finding}, "a file").front();
    Require(IsFitForATerminal(FormatDiagnostic(diagnostic, false, 80)),
            "no control bytes reach a terminal");
  }
}

}  // namespace quarry::fuzz
