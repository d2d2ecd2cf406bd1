// What check found in files, in the format that was asked for.
#ifndef QUARRY_TOOLS_CHECK_REPORT_H_
#define QUARRY_TOOLS_CHECK_REPORT_H_

#include <memory>
#include <string>
#include <vector>

#include "tools/check_text.h"
#include "tools/errors.h"

namespace quarry::tool {

// Takes the files in their order. Some formats write as they go, others at the
// end.
class CheckReport {
 public:
  virtual ~CheckReport() = default;

  virtual void AddFile(const std::string& file, const std::vector<Finding>& findings) = 0;
  virtual void AddUnreadable(const std::string& file, const ToolError& error) = 0;
  virtual void Finish() = 0;
};

// "text": reports to standard error, for people. To standard output: "json";
// "sarif", SARIF 2.1.0; "github", workflow commands that GitHub makes notes on
// the lines of.
std::vector<std::string> CheckFormats();
std::unique_ptr<CheckReport> MakeCheckReport(const std::string& format);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_REPORT_H_
