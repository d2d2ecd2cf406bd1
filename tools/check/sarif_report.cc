#include <filesystem>
#include <set>
#include <string_view>
#include <utility>

#include "tools/check/finding_text.h"
#include "tools/check/percent_encoding.h"
#include "tools/check/report.h"
#include "tools/terminal/json.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"
#include "tools/terminal/version.h"

namespace quarry::tool {

namespace {

using Json = nlohmann::ordered_json;

class SarifReport : public Report {
 public:
  void AddFile(const std::string& file, const std::vector<settings::Finding>& findings) override {
    for (const settings::Finding& finding : findings) {
      AddRule(*finding.rule);
      results_.push_back({{"ruleId", finding.rule->name},
                          {"level", LevelOf(*finding.rule)},
                          {"message", MessageOf(TextOf(finding))},
                          {"locations", {LocationOf(file, finding)}}});
    }
  }

  void AddUnreadable(const std::string& file, const settings::Error& error) override {
    failures_.push_back(
        {{"level", "error"},
         {"message", MessageOf(EscapeForTerminal(error.message))},
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
    const std::string path = std::filesystem::path(InputName(file)).lexically_normal().string();
    const auto kept = [](char c) {
      return std::string_view("/._-~").find(c) != std::string_view::npos ||
             (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    };
    return {{"uri", (path.substr(0, 1) == "/" ? "file://" : "") + PercentEncoded(path, kept)}};
  }

  static Json LocationOf(const std::string& file, const settings::Finding& finding) {
    // A finding about no line is shown at the first one.
    Json region = {{"startLine", 1}};
    if (finding.line != 0) {
      const Columns columns = ColumnsOf(finding);
      region = {
          {"startLine", finding.line}, {"startColumn", columns.begin}, {"endColumn", columns.end}};
    }
    return {{"physicalLocation", {{"artifactLocation", ArtifactOf(file)}, {"region", region}}}};
  }

  void AddRule(const settings::Rule& rule) {
    if (!known_rules_.insert(rule.name).second) return;
    rules_.push_back({{"id", rule.name},
                      {"shortDescription", {{"text", rule.meaning}}},
                      {"fullDescription", {{"text", rule.meaning}}},
                      {"help", {{"text", kHelp}}},
                      {"defaultConfiguration", {{"level", LevelOf(rule)}}}});
  }

  // In a message, braces would be placeholders and "[text](url)" a link; both are escaped.
  static Json MessageOf(const std::string& text) {
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

}  // namespace

std::unique_ptr<Report> MakeSarifReport() { return std::make_unique<SarifReport>(); }

}  // namespace quarry::tool
