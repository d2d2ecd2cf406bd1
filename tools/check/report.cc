#include "tools/check/report.h"

namespace quarry::tool {

std::unique_ptr<Report> MakeReport(ReportFormat format) {
  switch (format) {
    case ReportFormat::kText:
      break;
    case ReportFormat::kJson:
      return MakeJsonReport();
    case ReportFormat::kSarif:
      return MakeSarifReport();
    case ReportFormat::kGithub:
      return MakeGithubReport();
  }
  return MakeTextReport();
}

}  // namespace quarry::tool
