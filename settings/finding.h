// A finding: what is wrong with a line of a text, or is valid but probably not meant.
#ifndef QUARRY_SETTINGS_FINDING_H_
#define QUARRY_SETTINGS_FINDING_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "settings/line_scanner.h"
#include "settings/rules.h"

namespace quarry::settings {

struct Finding {
  bool IsError() const { return rule->severity == Severity::kError; }

  const Rule* rule = nullptr;
  std::size_t line = 0;    // from 1; 0 when it is not about a line
  std::size_t column = 0;  // in bytes, from 1; a tab counts one
  std::size_t length = 0;  // bytes that the finding is about
  std::string message;  // may hold names as they are, unprintable bytes included; so may the hint
  std::string hint;     // the remedy; may be empty
  std::string_view line_text;  // a view into the text that was checked
  // Where in the line something begins that is not to be shown; the caller of the checks sets it.
  std::size_t secret_offset = std::string_view::npos;
};

// A finding about `part`, which is a view into the line.
Finding FindingAt(const Rule& rule, const ScannedLine& line, std::string_view part,
                  std::string message, std::string hint);

// A finding about the text as a whole.
Finding FindingWithoutLine(const Rule& rule, std::string message, std::string hint);

bool HasErrors(const std::vector<Finding>& findings);

// By lines, then by columns.
void SortFindings(std::vector<Finding>* findings);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_FINDING_H_
