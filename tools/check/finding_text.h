// Findings as they are shown: without the secret that their line may hold.
#ifndef QUARRY_TOOLS_CHECK_FINDING_TEXT_H_
#define QUARRY_TOOLS_CHECK_FINDING_TEXT_H_

#include <cstddef>
#include <string>
#include <vector>

#include "settings/finding.h"
#include "tools/terminal/errors.h"

namespace quarry::tool {

// The finding's line with its secret masked; the finding's column and length fit this line.
std::string RedactedLine(const settings::Finding& finding);

// The findings as messages about the file: the first 20 of each rule, then how many more there are.
std::vector<Diagnostic> DiagnosticsOf(const std::vector<settings::Finding>& findings,
                                      const std::string& file);

// For other programs.

// "error" or "warning".
const char* LevelOf(const settings::Rule& rule);

// Message and hint, escaped, on a line each.
std::string TextOf(const settings::Finding& finding);

// The columns of a finding in characters, from 1; `end` is the one after the last.
struct Columns {
  std::size_t begin, end;
};
Columns ColumnsOf(const settings::Finding& finding);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_FINDING_TEXT_H_
