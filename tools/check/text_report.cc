#include "tools/check/finding_text.h"
#include "tools/check/report.h"
#include "tools/terminal/errors.h"

namespace quarry::tool {

namespace {

class TextReport : public Report {
 public:
  void AddFile(const std::string& file, const std::vector<settings::Finding>& findings) override {
    WriteDiagnostics(DiagnosticsOf(findings, file));
  }
  // The command has written the message.
  void AddUnreadable(const std::string& /*file*/, const settings::Error& /*error*/) override {}
  void Finish() override {}
};

}  // namespace

std::unique_ptr<Report> MakeTextReport() { return std::make_unique<TextReport>(); }

}  // namespace quarry::tool
