#include "settings/text_checks.h"

#include <algorithm>
#include <map>
#include <utility>

#include "dmconfig/string_case_cmp.h"
#include "settings/hints.h"
#include "settings/line_scanner.h"
#include "settings/wide_encoding.h"

namespace quarry::settings {

using storage::dmconfig::LineFault;
using storage::dmconfig::LineKind;
using storage::dmconfig::StringCaseCmp;

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsCommentMark(char c) { return c == '#' || c == ';'; }

// Where in a value something looks like a comment: " # x", or "# x" as the whole value, but not
// "#fff", and not the list "a ;b;".
std::size_t FindCommentLookalike(std::string_view value) {
  const bool has_semicolons = value.find(';') != value.rfind(';');
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (!IsCommentMark(value[i])) continue;
    const bool blank_before = i > 0 && IsBlank(value[i - 1]);
    const bool blank_after = i + 1 < value.size() && IsBlank(value[i + 1]);
    if (has_semicolons && value[i] == ';' && !blank_after) continue;
    if (blank_before || (i == 0 && blank_after)) return i;
  }
  return std::string_view::npos;
}

// Whether the value is one quotation, in which a backslash may come before further quotes.
bool IsQuoted(std::string_view value) {
  if (value.size() < 2 || (value[0] != '"' && value[0] != '\'')) return false;
  std::size_t end = 1;
  while (end < value.size() && value[end] != value[0]) end += value[end] == '\\' ? 2U : 1U;
  return end == value.size() - 1;
}

// In place of all findings in a text in UTF-16. Only the start of the line is quoted, for no secret
// would be recognised in it.
Finding WideTextFinding(const Finding& first_error, const std::string& encoding,
                        const std::string& file) {
  Finding finding = first_error;
  finding.rule = &rules::kWideCharacters;
  finding.line_text = first_error.line_text.substr(0, 2);
  finding.column = 1;
  finding.length = finding.line_text.size();
  finding.message = finding.rule->meaning;
  finding.hint = "convert it: iconv -f " + encoding + " -t UTF-8 " + file + " >NEW";
  return finding;
}

class Checker {
 public:
  explicit Checker(const CheckOptions& options) : options_(options) {}

  std::vector<Finding> Check(std::string_view text);

 private:
  // What came before in a section, by line numbers; 0 is none.
  struct Section {
    std::size_t header_line = 0;
    std::size_t comment_line = 0;
    std::map<std::string, std::size_t, StringCaseCmp> options;
  };

  void CheckLine(const ScannedLine& line);
  void CheckHeader(const ScannedLine& line);
  void CheckOption(const ScannedLine& line, bool continues);
  void CheckHeaderFault(const ScannedLine& line);
  void CheckOptionFault(const ScannedLine& line, bool continues);
  void EnterSection(const ScannedLine& line);
  void EnterNamelessSection();
  void WarnOfName(const ScannedLine& line);
  void WarnOfRepeatedOption(const ScannedLine& line);
  void WarnOfValue(const ScannedLine& line);
  void WarnOfCarriageReturn(const ScannedLine& line);

  // Adds a finding about `part`, a view into the line.
  void Add(const Rule& rule, const ScannedLine& line, std::string_view part, std::string hint);
  void Add(const Rule& rule, const ScannedLine& line, std::string_view part, std::string message,
           std::string hint);

  const CheckOptions& options_;
  std::vector<Finding> findings_;
  std::map<std::string, Section, StringCaseCmp> sections_;
  Section nameless_;  // holds the options after an invalid header
  Section* section_ = &nameless_;
  ContinuationFinder continuations_;
  ScannedLine pending_comment_;  // the first line of it; number 0 when none
  bool warned_of_carriage_return_ = false;
  bool reported_no_section_ = false;
};

std::vector<Finding> Checker::Check(std::string_view text) {
  LineScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) CheckLine(line);
  if (pending_comment_.number != 0) {
    Add(rules::kCommentAtEnd, pending_comment_, pending_comment_.text,
        "move it above the section or option that it is about");
  }
  SortFindings(&findings_);
  return std::move(findings_);
}

void Checker::CheckLine(const ScannedLine& line) {
  const bool continues = continuations_.Continues(line);
  switch (line.kind) {
    case LineKind::kBlank:
      return;
    case LineKind::kComment:
      if (pending_comment_.number == 0) pending_comment_ = line;
      return;
    case LineKind::kHeader:
      CheckHeader(line);
      break;
    case LineKind::kOption:
      CheckOption(line, continues);
      break;
  }
  pending_comment_.number = 0;
}

void Checker::CheckHeader(const ScannedLine& line) {
  CheckHeaderFault(line);
  if (line.header.name.empty()) {
    EnterNamelessSection();
    return;
  }
  EnterSection(line);
  const std::string_view name = line.header.name;
  if (IsBlank(name.front()) || IsBlank(name.back())) {
    Add(rules::kBlanksInSectionName, line, name, "write the name next to the brackets");
  }
}

void Checker::CheckHeaderFault(const ScannedLine& line) {
  const std::string_view at = line.text.substr(line.header.offset);
  switch (line.header.fault) {
    case LineFault::kHeaderNotClosed:
      return Add(rules::kHeaderNotClosed, line, at, "add \"]\" after the section name");
    case LineFault::kSectionNameEmpty:
      return Add(rules::kSectionNameEmpty, line, at.substr(0, 1),
                 "write a name between \"[\" and \"]\"");
    case LineFault::kTextAfterHeader:
      return Add(rules::kTextAfterHeader, line, at, TextAfterHeaderHint(line.text, at));
    default:
      return;
  }
}

void Checker::EnterSection(const ScannedLine& line) {
  section_ = &sections_[std::string(line.header.name)];
  if (section_->comment_line != 0) {
    Add(rules::kRepeatedSection, line, line.header.name,
        "repeated section: its comment above line " + std::to_string(section_->header_line) +
            " is dropped when a program saves this file",
        "keep one header for the section, with one comment");
  }
  section_->header_line = line.number;
  section_->comment_line = pending_comment_.number;
}

void Checker::EnterNamelessSection() {
  nameless_ = {};
  section_ = &nameless_;
}

void Checker::CheckOption(const ScannedLine& line, bool continues) {
  if (line.option.fault != LineFault::kNone) return CheckOptionFault(line, continues);
  if (continues) {
    Add(rules::kNoContinuation, line, line.option.name, kContinuationHint);
  } else {
    WarnOfName(line);
  }
  WarnOfRepeatedOption(line);
  WarnOfValue(line);
}

void Checker::CheckOptionFault(const ScannedLine& line, bool continues) {
  // Never empty: a line of blanks is no option line.
  const std::string_view text = WithoutTrailingBlanks(line.text);
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    if (IsHeaderAfterBom(text)) EnterNamelessSection();
    return Add(rules::kByteOrderMark, line, text.substr(0, kByteOrderMark.size()),
               "save the file without it");
  }
  switch (line.option.fault) {
    case LineFault::kNoSection:
      // Once for all of them: one header above is the remedy.
      if (std::exchange(reported_no_section_, true)) return;
      return Add(rules::kNoSection, line, text, "put a [section] line above");
    case LineFault::kNoEquals:
      return Add(
          rules::kNoEquals, line, text,
          continues ? kContinuationHint : MissingEqualsHint(text, !options_.holds_secret(line)));
    default:
      return Add(rules::kOptionNameEmpty, line, text.substr(0, 1),
                 continues ? kContinuationHint : "write a name before the \"=\"");
  }
}

void Checker::WarnOfName(const ScannedLine& line) {
  const std::size_t colon = FindColon(line.option.name);
  if (colon == std::string_view::npos) return;
  Add(rules::kColonInName, line, line.option.name.substr(colon, 1),
      ColonHint(line.text, colon, !options_.holds_secret(line)));
}

void Checker::WarnOfRepeatedOption(const ScannedLine& line) {
  std::size_t& last_line = section_->options[std::string(line.option.name)];
  if (last_line != 0) {
    Add(rules::kRepeatedOption, line, line.option.name,
        "repeated option: overrides line " + std::to_string(last_line),
        "keep one of the two lines");
  }
  last_line = line.number;
}

void Checker::WarnOfValue(const ScannedLine& line) {
  const std::string_view value = line.option.value;
  if (value.empty()) return;
  if (value.find_first_not_of(" \t") == std::string_view::npos) {
    return Add(rules::kBlankValue, line, value, "for an empty value write nothing after the \"=\"");
  }
  const std::string_view quotation = WithoutTrailingBlanks(value);
  const bool is_quoted = IsQuoted(quotation);
  if (is_quoted) Add(rules::kQuotesInValue, line, quotation, "write the value without quotes");
  const std::size_t mark = FindCommentLookalike(value);
  if (!is_quoted && mark != std::string_view::npos) {
    Add(rules::kCommentInValue, line, value.substr(mark), kCommentHint);
  }
  WarnOfCarriageReturn(line);
}

void Checker::WarnOfCarriageReturn(const ScannedLine& line) {
  const std::string_view value = line.option.value;
  const std::size_t first = value.find('\r');
  if (first == std::string_view::npos || warned_of_carriage_return_) return;
  warned_of_carriage_return_ = true;
  const bool is_last = value.find_first_not_of('\r', first) == std::string_view::npos;
  if (!is_last) {
    return Add(rules::kCarriageReturn, line, value.substr(first, 1),
               "carriage return within the value", "");
  }
  Add(rules::kCarriageReturn, line, value.substr(value.size() - 1),
      "remove all of them: sed -i 's/\\r$//' " + options_.file_in_commands);
}

void Checker::Add(const Rule& rule, const ScannedLine& line, std::string_view part,
                  std::string hint) {
  Add(rule, line, part, rule.meaning, std::move(hint));
}

void Checker::Add(const Rule& rule, const ScannedLine& line, std::string_view part,
                  std::string message, std::string hint) {
  // Whatever it is about, its cause is that several lines are read as one.
  if (HasLoneCarriageReturn(line.text) && &rule != &rules::kByteOrderMark) {
    hint = "end lines in line feeds: tr '\\r' '\\n' <" + options_.file_in_commands + " >NEW";
  }
  findings_.push_back(FindingAt(rule, line, part, std::move(message), std::move(hint)));
}

}  // namespace

std::vector<Finding> CheckText(std::string_view text, const CheckOptions& options) {
  std::vector<Finding> findings = Checker(options).Check(text);
  const char* const encoding = WideEncodingOf(text);
  const auto error = std::find_if(findings.begin(), findings.end(),
                                  [](const Finding& finding) { return finding.IsError(); });
  if (encoding == nullptr || error == findings.end()) return findings;
  return {WideTextFinding(*error, encoding, options.file_in_commands)};
}

}  // namespace quarry::settings
