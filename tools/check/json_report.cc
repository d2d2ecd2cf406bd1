#include "tools/check/finding_text.h"
#include "tools/check/report.h"
#include "tools/terminal/json.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

namespace {

class JsonReport : public Report {
 public:
  void AddFile(const std::string& file, const std::vector<settings::Finding>& findings) override {
    auto array = nlohmann::ordered_json::array();
    for (const settings::Finding& finding : findings) {
      array.push_back({{"severity", LevelOf(*finding.rule)},
                       {"rule", finding.rule->name},
                       {"line", finding.line},
                       {"column", finding.column},
                       {"length", finding.length},
                       {"message", EscapeForTerminal(finding.message)},
                       {"hint", EscapeForTerminal(finding.hint)}});
    }
    nlohmann::ordered_json entry;
    AddText(&entry, "file", file);
    entry["findings"] = std::move(array);
    files_.push_back(std::move(entry));
  }
  void AddUnreadable(const std::string& file, const settings::Error& error) override {
    files_.push_back(FailedFileJson(file, error));
  }
  void Finish() override { WriteStandardOutput(JsonText({{"schema", 1}, {"files", files_}})); }

 private:
  nlohmann::ordered_json files_ = nlohmann::ordered_json::array();
};

}  // namespace

std::unique_ptr<Report> MakeJsonReport() { return std::make_unique<JsonReport>(); }

}  // namespace quarry::tool
