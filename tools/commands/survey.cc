// quarry-config survey

#include <unistd.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "tools/commands/command.h"
#include "tools/commands/many_files.h"
#include "tools/commands/open_document.h"
#include "tools/terminal/json.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

namespace {

struct SurveyRequest {
  std::string section;
  std::string option;
  std::vector<std::string> files;
  bool count = false;
  bool json = false;
};

using Value = std::optional<std::string>;          // none: the option is absent
using ValueCount = std::pair<Value, std::size_t>;  // how many files have the value

std::string ValueText(const Value& value) { return value ? EscapeForTerminal(*value) : "(absent)"; }

void AddValue(nlohmann::ordered_json* entry, const Value& value) {
  if (value) {
    AddText(entry, "value", *value);
  } else {
    (*entry)["value"] = nullptr;
  }
}

bool IsListedBefore(const ValueCount& left, const ValueCount& right) {
  if (left.second != right.second) return left.second > right.second;
  if (left.first.has_value() != right.first.has_value()) return left.first.has_value();
  return left.first < right.first;
}

class Survey {
 public:
  explicit Survey(const SurveyRequest& request) : request_(request) {}

  void AddFile(const std::string& file);
  void AddFailure(const std::string& file, const settings::Error& error) {
    if (request_.json) files_.push_back(FailedFileJson(file, error));
  }

  bool HasValue() const;
  std::string Report() const;

 private:
  void Add(const std::string& file, std::size_t line, const Value& value);
  std::vector<ValueCount> SortedCounts() const;
  std::string CountsText() const;
  std::string Json() const;

  const SurveyRequest& request_;
  std::map<Value, std::size_t> counts_;
  std::string lines_;
  nlohmann::ordered_json files_ = nlohmann::ordered_json::array();
};

void Survey::AddFile(const std::string& file) {
  const settings::Snapshot snapshot = OpenSnapshot(file, ReadInput(file));
  const settings::Option* const option = snapshot.Find(request_.section, request_.option);
  const Value value =
      option == nullptr ? Value() : std::optional<std::string>(std::in_place, option->value);
  ++counts_[value];
  Add(file, option == nullptr ? 0 : option->line, value);
}

void Survey::Add(const std::string& file, std::size_t line, const Value& value) {
  if (!request_.json) {
    lines_ += EscapeForTerminal(InputName(file)) + ':' +
              (value ? std::to_string(line) + ": " : " ") + ValueText(value) + '\n';
    return;
  }
  nlohmann::ordered_json entry;
  AddText(&entry, "file", file);
  if (value) entry["line"] = line;
  AddValue(&entry, value);
  files_.push_back(std::move(entry));
}

bool Survey::HasValue() const {
  return std::any_of(counts_.begin(), counts_.end(),
                     [](const auto& count) { return count.first.has_value(); });
}

std::string Survey::Report() const {
  if (request_.json) return Json();
  return request_.count ? CountsText() : lines_;
}

std::vector<ValueCount> Survey::SortedCounts() const {
  std::vector<ValueCount> counts(counts_.begin(), counts_.end());
  std::sort(counts.begin(), counts.end(), IsListedBefore);
  return counts;
}

std::string Survey::CountsText() const {
  std::string text;
  std::size_t columns = 0;  // of the first number, which is the largest
  for (const auto& [value, files] : SortedCounts()) {
    const std::string number = std::to_string(files);
    columns = std::max(columns, number.size());
    text += std::string(columns - number.size(), ' ') + number + ' ' + ValueText(value) + '\n';
  }
  return text;
}

std::string Survey::Json() const {
  nlohmann::ordered_json json;
  json["schema"] = 1;
  AddText(&json, "section", request_.section);
  AddText(&json, "option", request_.option);
  json["files"] = files_;
  if (request_.count) json["values"] = nlohmann::ordered_json::array();
  for (const auto& [value, files] : request_.count ? SortedCounts() : std::vector<ValueCount>()) {
    nlohmann::ordered_json entry;
    AddValue(&entry, value);
    entry["files"] = files;
    json["values"].push_back(std::move(entry));
  }
  return JsonText(json);
}

// Other commands have the file first.
void HintAtOrder(const SurveyRequest& request) {
  if (access(request.section.c_str(), F_OK) != 0) return;
  WriteDiagnostics({Message("the first argument is the section, not the file " + request.section,
                            "write: quarry-config survey SECTION OPTION FILE...")});
}

ExitStatus RunSurvey(const SurveyRequest& request) {
  RequireNames({request.section, request.option});
  RequireOneStandardInput(request.files);
  Survey survey(request);
  Progress progress("files read", request.files.size());
  const std::size_t failed = ForEachFile(
      request.files, &progress, [&](const std::string& file) { survey.AddFile(file); },
      [&](const std::string& file, const settings::Error& error) {
        survey.AddFailure(file, error);
      });
  if (failed == request.files.size()) HintAtOrder(request);
  WriteStandardOutput(survey.Report());
  if (failed > 0) return kExitFailed;
  return survey.HasValue() ? kExitDone : kExitNo;
}

}  // namespace

Declaration DeclareSurvey() {
  const auto request = std::make_shared<SurveyRequest>();
  return {{
              // Which names there are depends on files that follow, so shells complete none.
              Argument("SECTION", ValueKind::kText, &request->section, "Section of the option"),
              Argument("OPTION", ValueKind::kText, &request->option, "Option to show"),
              RepeatedArgument("FILE", ValueKind::kFile, &request->files, "Files to read"),
              Flag("--count", &request->count, "Show how many files have each value"),
              Flag("--json", &request->json, "Print it as JSON"),
          },
          BindRequest(request, RunSurvey)};
}

}  // namespace quarry::tool
