// What is wrong with a text, and what is right but probably not meant.
#ifndef QUARRY_TOOLS_CHECK_TEXT_H_
#define QUARRY_TOOLS_CHECK_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/rules.h"
#include "tools/scan.h"

namespace quarry::tool {

struct Finding {
  bool IsError() const { return rule->severity == Severity::kError; }

  const Rule* rule = nullptr;
  std::size_t line = 0;    // from 1; 0 when it is about no line
  std::size_t column = 0;  // in bytes, from 1; a tab counts one
  std::size_t length = 0;  // bytes that the finding is about
  std::string message;
  std::string hint;            // what to do; may be empty
  std::string_view line_text;  // into the text that was checked
};

// A finding about `part`, which is a view into the line.
Finding FindingAt(const Rule& rule, const ScannedLine& line, std::string_view part,
                  std::string message, std::string hint);

// By lines, then columns.
void SortFindings(std::vector<Finding>* findings);

// Every finding in `text`, in order of lines. There is an error exactly when
// the library refuses the text, and the first one is on the line where it
// stops. `file` is the name that hints give for it.
std::vector<Finding> CheckText(std::string_view text, const std::string& file);

// The line of a finding, without the password that it may set. What the finding
// is about stands in it where column and length say.
std::string SafeLineOf(const Finding& finding);

// The finding as it goes to a terminal or a log, several lines:
//   quarry-config: FILE:14:1: option line without "="
//     14 | threads 4
//        | ^~~~~~~~~
//     hint: write "threads = 4"
std::string FindingReport(const Finding& finding, const std::string& file, bool coloured);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_TEXT_H_
