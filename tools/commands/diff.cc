// quarry-config diff

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "settings/differences.h"
#include "settings/line_scanner.h"
#include "tools/check/plain_password.h"
#include "tools/commands/command.h"
#include "tools/commands/many_files.h"
#include "tools/commands/open_document.h"
#include "tools/terminal/json.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Difference;
using settings::Document;

namespace {

struct DiffRequest {
  std::optional<std::string> base;  // the left side of all files
  std::vector<std::string> files;
  std::vector<std::string> ignored;  // SECTION, or "SECTION OPTION"
  bool json = false;
  bool show_secrets = false;
};

// Names may contain blanks, so the name given is not split. That of a section ends before its first
// NUL.
bool HasName(const Difference& one, const std::string& name) {
  const std::string section = one.section.substr(0, one.section.find('\0'));
  return settings::SameName(name, section) ||
         (one.option && settings::SameName(name, section + ' ' + *one.option));
}

// A section that is on one side only comes right before its options. It goes with them when all of
// them are ignored.
std::vector<Difference> WithoutIgnored(const std::vector<Difference>& differences,
                                       const std::vector<std::string>& ignored) {
  std::vector<Difference> kept;  // in reverse
  std::string section_after;
  for (auto one = differences.rbegin(); one != differences.rend(); ++one) {
    const bool had_options = std::exchange(section_after, one->section) == one->section;
    const bool keeps_options = !kept.empty() && kept.back().section == one->section;
    const bool is_ignored =
        std::any_of(ignored.begin(), ignored.end(),
                    [&](const std::string& name) { return HasName(*one, name); });
    if (is_ignored || (!one->option && had_options && !keeps_options)) continue;
    kept.push_back(*one);
  }
  std::reverse(kept.begin(), kept.end());
  return kept;
}

void HidePasswords(std::vector<Difference>* differences) {
  for (Difference& one : *differences) {
    if (!one.option) continue;
    for (std::optional<std::string>* value : {&one.left, &one.right}) {
      if (*value) *value = RedactedValue(*one.option, **value);
    }
  }
}

std::vector<Difference> Compare(const DiffRequest& request, Document* left, Document* right) {
  std::vector<Difference> differences =
      WithoutIgnored(settings::FindDifferences(left, right), request.ignored);
  if (!request.show_secrets) HidePasswords(&differences);
  return differences;
}

// "- [Server] threads = 4" and "+ [Server] threads = 8", with `prefix` before each.
std::string DifferencesText(const std::vector<Difference>& differences, const std::string& prefix) {
  std::string text;
  for (const Difference& one : differences) {
    const auto add = [&](char sign, const std::optional<std::string>& value) {
      if (!value) return;
      text += prefix + sign + " [" + EscapeForTerminal(one.section) + "]";
      if (one.option)
        text += ' ' + EscapeForTerminal(*one.option) + " = " + EscapeForTerminal(*value);
      text += '\n';
    };
    add('-', one.left);
    add('+', one.right);
  }
  return text;
}

nlohmann::ordered_json DifferencesJson(const std::vector<Difference>& differences) {
  auto array = nlohmann::ordered_json::array();
  for (const Difference& one : differences) {
    nlohmann::ordered_json entry;
    AddText(&entry, "section", one.section);
    if (one.option) AddText(&entry, "option", *one.option);
    const auto add = [&](const char* key, const std::optional<std::string>& value) {
      if (!one.option) {
        entry[key] = value.has_value();
      } else if (value) {
        AddText(&entry, key, *value);
      } else {
        entry[key] = nullptr;
      }
    };
    add("left", one.left);
    add("right", one.right);
    array.push_back(std::move(entry));
  }
  return array;
}

ExitStatus CompareTwo(const DiffRequest& request) {
  if (request.files.size() != 2) {
    throw ToolError(kExitUsage,
                    "diff compares two files, not " + std::to_string(request.files.size()),
                    "to compare each file with one: quarry-config diff --base FILE FILE...");
  }
  Document left = OpenDocument(request.files[0]);
  Document right = OpenDocument(request.files[1]);
  const std::vector<Difference> differences = Compare(request, &left, &right);
  if (request.json) {
    nlohmann::ordered_json json = {{"schema", 1}};
    AddText(&json, "left", left.file());
    AddText(&json, "right", right.file());
    json["differences"] = DifferencesJson(differences);
    WriteStandardOutput(JsonText(json));
  } else {
    WriteStandardOutput(DifferencesText(differences, ""));
  }
  return differences.empty() ? kExitDone : kExitNo;
}

// What is found when each file is compared with the base. No document outlives its comparison.
class BaseComparison {
 public:
  explicit BaseComparison(const DiffRequest& request)
      : request_(request), base_(OpenDocument(*request.base)) {}

  void AddFile(const std::string& file);
  void AddFailure(const std::string& file, const settings::Error& error) {
    if (request_.json) files_.push_back(FailedFileJson(file, error));
  }

  std::string Report() const;
  // "198 of 200 files agree with base.conf, 1 not compared".
  std::string Summary(std::size_t failed) const;
  bool agrees() const { return differing_ == 0; }

 private:
  const DiffRequest& request_;
  Document base_;
  std::size_t differing_ = 0;
  std::string text_;
  nlohmann::ordered_json files_ = nlohmann::ordered_json::array();
};

void BaseComparison::AddFile(const std::string& file) {
  Document document = OpenDocument(file);
  const std::vector<Difference> differences = Compare(request_, &base_, &document);
  if (!differences.empty()) ++differing_;
  if (!request_.json) {
    text_ += DifferencesText(differences, EscapeForTerminal(InputName(file)) + ": ");
    return;
  }
  nlohmann::ordered_json entry;
  AddText(&entry, "file", file);
  entry["differences"] = DifferencesJson(differences);
  files_.push_back(std::move(entry));
}

std::string BaseComparison::Report() const {
  if (!request_.json) return text_;
  nlohmann::ordered_json json = {{"schema", 1}};
  AddText(&json, "base", base_.file());
  json["files"] = files_;
  return JsonText(json);
}

std::string BaseComparison::Summary(std::size_t failed) const {
  const std::size_t all = request_.files.size();
  return std::to_string(all - differing_ - failed) + " of " + std::to_string(all) +
         " files agree with " + InputName(base_.file()) +
         (failed > 0 ? ", " + std::to_string(failed) + " not compared" : "");
}

ExitStatus CompareWithBase(const DiffRequest& request) {
  BaseComparison comparison(request);
  Progress progress("files compared", request.files.size());
  const std::size_t failed = ForEachFile(
      request.files, &progress, [&](const std::string& file) { comparison.AddFile(file); },
      [&](const std::string& file, const settings::Error& error) {
        comparison.AddFailure(file, error);
      });
  WriteStandardOutput(comparison.Report());
  WriteDiagnostics({Message(comparison.Summary(failed))});
  if (failed > 0) return kExitFailed;
  return comparison.agrees() ? kExitDone : kExitNo;
}

ExitStatus RunDiff(const DiffRequest& request) {
  RequireNames(request.ignored);
  std::vector<std::string> all = request.files;
  if (request.base) all.push_back(*request.base);
  RequireOneStandardInput(all);
  return request.base ? CompareWithBase(request) : CompareTwo(request);
}

}  // namespace

Declaration DeclareDiff() {
  const auto request = std::make_shared<DiffRequest>();
  return {{
              RepeatedArgument("FILE", ValueKind::kFile, &request->files,
                               "Two files, or with --base any number"),
              Option("--base", "BASE", ValueKind::kFile, &request->base,
                     "Compare every file with this one"),
              RepeatedOption("--ignore", "NAME", ValueKind::kText, &request->ignored,
                             "Ignore this section, or the option 'SECTION OPTION'"),
              Flag("--json", &request->json, "Print the differences as JSON"),
              ShowSecretsFlag(&request->show_secrets),
          },
          BindRequest(request, RunDiff)};
}

}  // namespace quarry::tool
