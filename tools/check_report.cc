#include "tools/check_report.h"

#include <filesystem>
#include <set>
#include <string_view>
#include <utility>

#include "tools/check_as.h"
#include "tools/display.h"
#include "tools/files.h"
#include "tools/json_text.h"
#include "tools/version.h"

namespace quarry::tool {

namespace {

using Json = nlohmann::ordered_json;

const char* LevelOf(const Rule& rule) {
  return rule.severity == Severity::kError ? "error" : "warning";
}

// Where a finding is in its line, in characters from 1; the end is behind it.
struct Columns {
  std::size_t begin, end;
};

Columns ColumnsOf(const Finding& finding) {
  const std::string line = SafeLineOf(finding);
  const std::size_t before = CountCharacters(line.substr(0, finding.column - 1));
  const std::size_t length = CountCharacters(line.substr(finding.column - 1, finding.length));
  return {before + 1, before + 1 + length};
}

// The text with every byte that is not in `kept` as "%", and two digits.
std::string PercentEncoded(std::string_view text, bool (*kept)(char)) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    if (kept(c)) {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded += {'%', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
  }
  return encoded;
}

// The file as code reviews name it; "<stdin>" for "-".
std::string NameForReview(const std::string& file) {
  return file == "-" ? DisplayName(file) : file;
}

class TextReport : public CheckReport {
 public:
  void AddFile(const std::string& file, const std::vector<Finding>& findings) override {
    WriteFindings(findings, file);
  }
  void AddUnreadable(const std::string& /*file*/, const ToolError& /*error*/) override {}
  void Finish() override {}
};

class JsonReport : public CheckReport {
 public:
  void AddFile(const std::string& file, const std::vector<Finding>& findings) override {
    auto array = Json::array();
    for (const Finding& finding : findings) {
      array.push_back({{"severity", LevelOf(*finding.rule)},
                       {"rule", finding.rule->name},
                       {"line", finding.line},
                       {"column", finding.column},
                       {"length", finding.length},
                       {"message", finding.message},
                       {"hint", finding.hint}});
    }
    Add(file, "findings", std::move(array));
  }
  void AddUnreadable(const std::string& file, const ToolError& error) override {
    Add(file, "error", error.message());
  }
  void Finish() override { WriteStandardOutput(JsonText({{"schema", 1}, {"files", files_}})); }

 private:
  void Add(const std::string& file, const char* key, Json value) {
    Json entry;
    AddText(&entry, "file", file);
    entry[key] = std::move(value);
    files_.push_back(std::move(entry));
  }

  Json files_ = Json::array();
};

class SarifReport : public CheckReport {
 public:
  void AddFile(const std::string& file, const std::vector<Finding>& findings) override {
    for (const Finding& finding : findings) {
      AddRule(*finding.rule);
      const std::string hint = finding.hint.empty() ? "" : "\n" + finding.hint;
      results_.push_back({{"ruleId", finding.rule->name},
                          {"level", LevelOf(*finding.rule)},
                          {"message", Message(finding.message + hint)},
                          {"locations", {LocationOf(file, finding)}}});
    }
  }

  void AddUnreadable(const std::string& file, const ToolError& error) override {
    failures_.push_back(
        {{"level", "error"},
         {"message", Message(error.message())},
         {"locations", {{{"physicalLocation", {{"artifactLocation", ArtifactOf(file)}}}}}}});
  }

  void Finish() override {
    const Json driver = {
        {"name", "quarry-config"}, {"version", ProgramVersion()}, {"rules", rules_}};
    const Json invocation = {{"executionSuccessful", failures_.empty()},
                             {"toolExecutionNotifications", failures_}};
    const Json run = {{"tool", {{"driver", driver}}},
                      {"columnKind", "unicodeCodePoints"},
                      {"invocations", {invocation}},
                      {"results", results_}};
    WriteStandardOutput(JsonText({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                                  {"version", "2.1.0"},
                                  {"runs", {run}}}));
  }

 private:
  // A path as a reference to a file: relative ones stay so.
  static Json ArtifactOf(const std::string& file) {
    const std::string path = std::filesystem::path(NameForReview(file)).lexically_normal().string();
    const auto kept = [](char c) {
      return std::string_view("/._-~").find(c) != std::string_view::npos ||
             (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    };
    return {{"uri", (path.substr(0, 1) == "/" ? "file://" : "") + PercentEncoded(path, kept)}};
  }

  static Json LocationOf(const std::string& file, const Finding& finding) {
    // A finding about no line is shown at the first one.
    Json region = {{"startLine", 1}};
    if (finding.line != 0) {
      const Columns columns = ColumnsOf(finding);
      region = {
          {"startLine", finding.line}, {"startColumn", columns.begin}, {"endColumn", columns.end}};
    }
    return {{"physicalLocation", {{"artifactLocation", ArtifactOf(file)}, {"region", region}}}};
  }

  void AddRule(const Rule& rule) {
    if (!known_rules_.insert(rule.name).second) return;
    rules_.push_back({{"id", rule.name},
                      {"shortDescription", {{"text", rule.meaning}}},
                      {"fullDescription", {{"text", rule.meaning}}},
                      {"help", {{"text", kHelp}}},
                      {"defaultConfiguration", {{"level", LevelOf(rule)}}}});
  }

  // What stands in a message for itself, where braces would be places to fill
  // and
  // "[text](url)" a link.
  static Json Message(const std::string& text) {
    std::string literal;
    for (const char c : text) {
      if (c == '{' || c == '}') literal += c;
      if (c == '(' && !literal.empty() && literal.back() == ']') {
        literal.insert(literal.size() - 1, 1, '\\');
      }
      literal += c;
    }
    return {{"text", literal}};
  }

  static constexpr char kHelp[] =
      "The message of each finding has its remedy; quarry-config(5) describes "
      "the format.";

  Json results_ = Json::array();
  Json failures_ = Json::array();
  Json rules_ = Json::array();
  std::set<std::string> known_rules_;
};

class GithubReport : public CheckReport {
 public:
  void AddFile(const std::string& file, const std::vector<Finding>& findings) override {
    for (const Finding& finding : findings) {
      std::string place;
      if (finding.line != 0) {
        const Columns columns = ColumnsOf(finding);
        place = ",line=" + std::to_string(finding.line) + ",col=" + std::to_string(columns.begin) +
                ",endColumn=" + std::to_string(columns.end);
      }
      place += std::string(",title=") + finding.rule->name;
      Add(LevelOf(*finding.rule), file, place,
          finding.message + (finding.hint.empty() ? "" : "\n" + finding.hint));
    }
  }
  void AddUnreadable(const std::string& file, const ToolError& error) override {
    Add("error", file, "", error.message());
  }
  void Finish() override { WriteStandardOutput(commands_); }

 private:
  void Add(const char* level, const std::string& file, const std::string& place,
           const std::string& message) {
    const auto kept_in_text = [](char c) { return c != '%' && c != '\r' && c != '\n'; };
    const auto kept_in_property = [](char c) {
      return c != '%' && c != '\r' && c != '\n' && c != ':' && c != ',';
    };
    commands_ += std::string("::") + level +
                 " file=" + PercentEncoded(NameForReview(file), kept_in_property) + place +
                 "::" + PercentEncoded(message, kept_in_text) + '\n';
  }

  std::string commands_;
};

template <class Report>
std::unique_ptr<CheckReport> Make() {
  return std::make_unique<Report>();
}

struct Format {
  const char* name;
  std::unique_ptr<CheckReport> (*make)();
};
constexpr Format kFormats[] = {{"text", Make<TextReport>},
                               {"json", Make<JsonReport>},
                               {"sarif", Make<SarifReport>},
                               {"github", Make<GithubReport>}};

}  // namespace

std::vector<std::string> CheckFormats() {
  std::vector<std::string> names;
  for (const Format& format : kFormats) names.emplace_back(format.name);
  return names;
}

std::unique_ptr<CheckReport> MakeCheckReport(const std::string& format) {
  for (const Format& known : kFormats) {
    if (format == known.name) return known.make();
  }
  return nullptr;
}

}  // namespace quarry::tool
