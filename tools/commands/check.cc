// quarry-config check

#include <algorithm>
#include <cstddef>
#include <set>

#include "tools/check/program_rules.h"
#include "tools/check/report.h"
#include "tools/commands/command.h"
#include "tools/commands/many_files.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal.h"

namespace quarry::tool {

namespace {

struct CheckRequest {
  std::vector<std::string> files;
  bool strict = false;            // warnings count as errors
  std::set<std::string> allowed;  // rules whose warnings do not
  ReportFormat format = ReportFormat::kText;
  Program program = Program::kNone;
  bool no_key = false;
};

struct Totals {
  void Count(const std::vector<settings::Finding>& findings,
             const std::set<std::string>& allowed_rules) {
    ++files;
    for (const settings::Finding& finding : findings) {
      ++(finding.IsError() ? errors : warnings);
      allowed += allowed_rules.count(finding.rule->name);
    }
  }

  std::size_t files = 0;
  std::size_t errors = 0;
  std::size_t warnings = 0;
  std::size_t allowed = 0;     // of the warnings
  std::size_t unreadable = 0;  // not among the files
};

std::string Counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

// "2 files, no errors" or "1 file, 2 errors, 1 warning".
std::string Summary(const Totals& totals) {
  std::string text = Counted(totals.files, "file") + ", " +
                     (totals.errors == 0 ? "no errors" : Counted(totals.errors, "error"));
  if (totals.unreadable > 0) text += ", " + std::to_string(totals.unreadable) + " not read";
  if (totals.warnings > 0) text += ", " + Counted(totals.warnings, "warning");
  if (totals.allowed > 0) text += " (" + std::to_string(totals.allowed) + " allowed)";
  return text + '\n';
}

ExitStatus ExitStatusFor(const Totals& totals, bool strict) {
  if (totals.unreadable > 0) return kExitFailed;
  const bool refused = totals.errors > 0 || (strict && totals.warnings > totals.allowed);
  return refused ? kExitNo : kExitDone;
}

ExitStatus RunCheck(const CheckRequest& request) {
  if (request.no_key && request.program != Program::kAgent) {
    throw ToolError(kExitUsage, "--no-key requires --as agent",
                    "only an agent has a key; see: quarry-config check --help");
  }
  ProgramCheckOptions options;
  options.mention_absent = request.strict;
  options.no_key = request.no_key;
  Totals totals;
  Progress progress("files checked", request.files.size());
  const auto report = MakeReport(request.format);
  const auto check_file = [&](const std::string& file) {
    const std::string text = ReadInput(file);
    const auto findings = CheckForProgram(text, file, request.program, options);
    totals.Count(findings, request.allowed);
    if (!findings.empty()) progress.Clear();
    report->AddFile(file, findings);
  };
  totals.unreadable = ForEachFile(request.files, &progress, check_file,
                                  [&](const std::string& file, const settings::Error& error) {
                                    report->AddUnreadable(file, error);
                                  });
  report->Finish();
  if (request.format == ReportFormat::kText && IsStandardOutputTerminal()) {
    WriteStandardOutput(Summary(totals));
  }
  return ExitStatusFor(totals, request.strict);
}

std::vector<std::string> RulesOf(settings::Severity severity) {
  std::vector<std::string> names;
  const auto add = [&](const settings::Rule* rule) {
    if (rule->severity == severity) names.emplace_back(rule->name);
  };
  std::for_each(std::begin(settings::rules::kTextRules), std::end(settings::rules::kTextRules),
                add);
  std::for_each(std::begin(rules::kProgramRules), std::end(rules::kProgramRules), add);
  return names;
}

void RequireWarning(const std::string& rule, const std::vector<std::string>& warnings) {
  const auto errors = RulesOf(settings::Severity::kError);
  if (std::find(errors.begin(), errors.end(), rule) != errors.end()) {
    throw ToolError(kExitUsage, rule + " is an error, which always counts",
                    "--allow is for rules that give warnings");
  }
  RequireChoice("--allow", rule, warnings);
}

Word AllowOption(std::set<std::string>* allowed) {
  Word word;
  word.name = "--allow";
  word.placeholder = "RULE";
  word.kind = ValueKind::kChoice;
  word.help = "With --strict, do not count warnings by this rule";
  word.repeated = true;
  word.choices = RulesOf(settings::Severity::kWarning);
  word.needs = "--strict";
  word.store = [allowed, warnings = word.choices](const std::string& rule) {
    RequireWarning(rule, warnings);
    allowed->insert(rule);
  };
  return word;
}

Word JsonFlag(ReportFormat* format) {
  Word word;
  word.name = "--json";
  word.excludes = "--format";
  word.help = "The same as --format=json";
  word.store = [format](const std::string& /*value*/) { *format = ReportFormat::kJson; };
  return word;
}

}  // namespace

Declaration DeclareCheck() {
  const auto request = std::make_shared<CheckRequest>();
  return {
      {
          RepeatedArgument("FILE", ValueKind::kFile, &request->files, "Files to check"),
          Flag("--strict", &request->strict, "Let warnings count as errors"),
          AllowOption(&request->allowed),
          ChoiceOption<ReportFormat>("--format", "FORMAT", &request->format,
                                     {{"text", ReportFormat::kText},
                                      {"json", ReportFormat::kJson},
                                      {"sarif", ReportFormat::kSarif},
                                      {"github", ReportFormat::kGithub}},
                                     "How findings are shown: text, json, sarif or github"),
          JsonFlag(&request->format),
          ProgramOption(&request->program, "Check also what this program needs: agent or client"),
          Flag("--no-key", &request->no_key,
               "With --as agent, check without the agent's key: of the password only its form"),
      },
      BindRequest(request, RunCheck)};
}

}  // namespace quarry::tool
