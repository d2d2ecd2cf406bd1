// The report of what check found in files, in one of several formats, each in a file of its own.
#ifndef QUARRY_TOOLS_CHECK_REPORT_H_
#define QUARRY_TOOLS_CHECK_REPORT_H_

#include <memory>
#include <string>
#include <vector>

#include "settings/error.h"
#include "settings/finding.h"

namespace quarry::tool {

// AddFile and AddUnreadable are called in the order of the command line. Some formats write as they
// go, others at the end.
class Report {
 public:
  virtual ~Report() = default;

  virtual void AddFile(const std::string& file, const std::vector<settings::Finding>& findings) = 0;
  virtual void AddUnreadable(const std::string& file, const settings::Error& error) = 0;
  virtual void Finish() = 0;
};

enum class ReportFormat {
  kText,    // to standard error, for people
  kJson,    // this and those below to standard output
  kSarif,   // SARIF 2.1.0
  kGithub,  // workflow commands that GitHub shows as notes on lines
};
std::unique_ptr<Report> MakeReport(ReportFormat format);

// Each defined in NAME_report.cc.
std::unique_ptr<Report> MakeTextReport();
std::unique_ptr<Report> MakeJsonReport();
std::unique_ptr<Report> MakeSarifReport();
std::unique_ptr<Report> MakeGithubReport();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_REPORT_H_
