#include "tools/check/finding_text.h"
#include "tools/check/percent_encoding.h"
#include "tools/check/report.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

namespace {

class GithubReport : public Report {
 public:
  void AddFile(const std::string& file, const std::vector<settings::Finding>& findings) override {
    for (const settings::Finding& finding : findings) {
      std::string place;
      if (finding.line != 0) {
        const Columns columns = ColumnsOf(finding);
        place = ",line=" + std::to_string(finding.line) + ",col=" + std::to_string(columns.begin) +
                ",endColumn=" + std::to_string(columns.end);
      }
      place += std::string(",title=") + finding.rule->name;
      Add(LevelOf(*finding.rule), file, place, TextOf(finding));
    }
  }
  void AddUnreadable(const std::string& file, const settings::Error& error) override {
    Add("error", file, "", EscapeForTerminal(error.message));
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
                 " file=" + PercentEncoded(InputName(file), kept_in_property) + place +
                 "::" + PercentEncoded(message, kept_in_text) + '\n';
  }

  std::string commands_;
};

}  // namespace

std::unique_ptr<Report> MakeGithubReport() { return std::make_unique<GithubReport>(); }

}  // namespace quarry::tool
