// Promise: `check` finds an error exactly when the library refuses the text,
// the first one on the line where it stops; its reports are fit for a terminal.
// A snapshot of the text says what a load says.
#include "tools/check/check.h"

#include <strings.h>

#include <algorithm>
#include <cctype>

#include "fuzz/reference_reader.h"
#include "fuzz/target.h"
#include "settings/snapshot.h"
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

// In the form of a model.
std::string CommentOf(std::string_view comment) {
  return comment.empty() ? "" : '\n' + std::string(comment);
}

Sections SectionsOf(const settings::Snapshot& snapshot) {
  Sections sections;
  for (const settings::Section& section : snapshot.sections()) {
    Section& added = sections.emplace_back();
    added = {std::string(section.name), CommentOf(section.comment), {}};
    for (const settings::Option& option : section.options) {
      added.options.push_back(
          {std::string(option.name), std::string(option.value), CommentOf(option.comment)});
    }
    std::sort(added.options.begin(), added.options.end(), [](const auto& left, const auto& right) {
      return strcasecmp(left.name.c_str(), right.name.c_str()) < 0;
    });
  }
  return sections;
}

// In the other letter case, with something after a NUL.
std::string OtherSpelling(std::string_view name) {
  std::string other(name);
  for (char& c : other)
    c = static_cast<char>(std::islower(c) != 0 ? std::toupper(c) : std::tolower(c));
  return other + std::string("\0x", 2);
}

void TrySnapshot(const std::string& text, const Reading& reading) {
  std::vector<settings::Problem> problems;
  const auto snapshot = settings::Snapshot::Parse("f", text, &problems);
  Require(snapshot.has_value() == (reading.status == 0), "a snapshot is what a load accepts");
  Require(snapshot.has_value() == problems.empty(), "there is a problem in every other text");
  if (!snapshot) return;
  Require(SectionsOf(*snapshot) == reading.sections, "a snapshot says what a load says");
  for (const settings::Section& section : snapshot->sections()) {
    const std::string name = OtherSpelling(section.name);
    Require(snapshot->FindSection(name) == &section, "a section is found in every spelling");
    for (const settings::Option& option : section.options) {
      Require(snapshot->Find(name, OtherSpelling(option.name)) == &option, "so is an option");
    }
  }
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
  TrySnapshot(text, reading);
  Saw(loads ? findings.empty() ? "clean" : "warned" : "refused");
  for (const Finding& finding : findings) {
    Require(finding.line > 0 && finding.column > 0 && finding.length > 0, "a finding is somewhere");
    const tool::Diagnostic diagnostic = tool::DiagnosticsOf({finding}, "a file").front();
    Require(IsFitForATerminal(FormatDiagnostic(diagnostic, false, 80)),
            "no control bytes reach a terminal");
  }
}

}  // namespace quarry::fuzz
