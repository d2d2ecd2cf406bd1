#include "tools/commands/edit_report.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "settings/line_scanner.h"
#include "tools/check/password_line.h"
#include "tools/terminal/redactor.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::LineEdit;
using settings::ScannedLine;
using storage::dmconfig::LineKind;

namespace {

// A line as the report shows it; its parts are fit for a terminal.
struct ReportedLine {
  LineKind kind = LineKind::kBlank;
  std::size_t number = 0;
  std::string section;  // of an option or a header
  std::string option, value;
  std::string comment;
};

// The lines of a text, by their numbers.
class ReportedText {
 public:
  ReportedText(std::string_view text, bool show_secrets);

  const ReportedLine& Line(std::size_t number) const { return lines_[number - 1]; }

 private:
  std::vector<ReportedLine> lines_;
};

// `part` of the line, without what follows from the offset `secret` on.
std::string ShownPart(std::string_view part, const ScannedLine& line, std::size_t secret) {
  const auto begin = static_cast<std::size_t>(part.data() - line.raw.data());
  if (secret >= begin + part.size()) return EscapeForTerminal(part);
  return EscapeForTerminal(part.substr(0, secret - std::min(begin, secret))) + kMask;
}

ReportedText::ReportedText(std::string_view text, bool show_secrets) {
  const SecretLines secrets(text);
  std::string section;
  settings::LineScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) {
    const std::size_t secret =
        show_secrets ? std::string_view::npos : secrets.Find(line.number, line.raw);
    const auto shown = [&](std::string_view part) { return ShownPart(part, line, secret); };
    ReportedLine& reported = lines_.emplace_back();
    reported.kind = line.kind;
    reported.number = line.number;
    if (line.kind == LineKind::kHeader) section = shown(line.header.name);
    reported.section = section;
    if (line.kind == LineKind::kComment) reported.comment = shown(line.text);
    if (line.kind != LineKind::kOption) continue;
    reported.option = shown(line.option.name);
    reported.value = shown(line.option.value);
  }
}

// The line as one that was added or removed; nothing for a blank line, which is no change.
std::string ContentOf(const ReportedLine& line) {
  switch (line.kind) {
    case LineKind::kHeader:
      return '[' + line.section + ']';
    case LineKind::kOption:
      return '[' + line.section + "] " + line.option + ": " + line.value;
    case LineKind::kComment:
      return line.comment;
    case LineKind::kBlank:
      break;
  }
  return "";
}

// What changed when one line replaced another of the same kind.
std::string ChangeOf(const ReportedLine& before, const ReportedLine& after) {
  if (before.kind == LineKind::kHeader)
    return '[' + before.section + "] -> [" + after.section + ']';
  const std::string option = '[' + after.section + "] " + before.option;
  return before.option == after.option ? option + ": " + before.value + " -> " + after.value
                                       : option + " -> " + after.option;
}

class Report {
 public:
  Report(const std::string& file, const ReportedText& before, const ReportedText& after)
      : file_(EscapeForTerminal(file)), before_(before), after_(after) {}

  void Add(const LineEdit& edit);

  std::string text() const { return text_.empty() ? "unchanged " + file_ + '\n' : text_; }

 private:
  void AddLine(const std::string& what, std::size_t number, const std::string& content);

  const std::string file_;
  const ReportedText& before_;
  const ReportedText& after_;
  std::ptrdiff_t shift_ = 0;  // of the lines after the last edit
  std::string text_;
};

// An edit either replaces lines one by one, or it adds or removes lines.
void Report::Add(const LineEdit& edit) {
  const std::size_t begin = edit.line + static_cast<std::size_t>(shift_);
  shift_ +=
      static_cast<std::ptrdiff_t>(edit.added.size()) - static_cast<std::ptrdiff_t>(edit.removed);
  for (std::size_t i = 0; i < std::max(edit.removed, edit.added.size()); ++i) {
    if (i >= edit.added.size()) {
      AddLine("removed", edit.line + i, ContentOf(before_.Line(edit.line + i)));
    } else if (i >= edit.removed) {
      AddLine("added", begin + i, ContentOf(after_.Line(begin + i)));
    } else {
      AddLine("changed", begin + i, ChangeOf(before_.Line(edit.line + i), after_.Line(begin + i)));
    }
  }
}

void Report::AddLine(const std::string& what, std::size_t number, const std::string& content) {
  if (content.empty()) return;
  text_ += what + ' ' + file_ + ':' + std::to_string(number) + ": " + content + '\n';
}

}  // namespace

std::string EditReport(const std::string& file, const std::string& before,
                       const settings::EditedText& edited, bool show_secrets) {
  const ReportedText old_lines(before, show_secrets), new_lines(edited.text, show_secrets);
  Report report(file, old_lines, new_lines);
  for (const LineEdit& edit : edited.edit) report.Add(edit);
  return report.text();
}

}  // namespace quarry::tool
