// The lines of a text, each with what the grammar says of it. Unlike a load, a scan goes on after
// an invalid line.
#ifndef QUARRY_SETTINGS_LINE_SCANNER_H_
#define QUARRY_SETTINGS_LINE_SCANNER_H_

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "dmconfig/line.h"
#include "dmconfig/string_case_cmp.h"

namespace quarry::settings {

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Whether the line would be a header but for a byte-order mark before it. Only the mark is
// reported then, not every option after it.
bool IsHeaderAfterBom(std::string_view text);

// Removes spaces, tabs and carriage returns at the end.
std::string_view WithoutTrailingBlanks(std::string_view text);

// The text with the letters A to Z in lower case.
std::string Folded(std::string_view text);

// Whether the two names are the same section or option, and whether one comes before another in the
// order of StringCaseCmp.
bool SameName(std::string_view one, std::string_view other) noexcept;
bool IsNameBefore(std::string_view one, std::string_view other) noexcept;

// All views are into the text.
struct ScannedLine {
  // What breaks the grammar in it; kNone for a valid line.
  storage::dmconfig::LineFault fault() const;

  std::size_t number = 0;  // from 1
  std::string_view raw;    // without its line feed
  std::string_view text;   // and without leading blanks
  storage::dmconfig::LineKind kind = storage::dmconfig::LineKind::kBlank;
  storage::dmconfig::HeaderLine header;  // of a kHeader
  storage::dmconfig::OptionLine option;  // of a kOption
};

class LineScanner {
 public:
  // Borrows the text.
  explicit LineScanner(std::string_view text) : rest_(text) {}

  // Returns false at the end of the text.
  bool Next(ScannedLine* line);

 private:
  std::string_view rest_;
  std::size_t number_ = 0;
  bool in_section_ = false;
};

// Tells the option lines that were probably meant to continue the value above, as other formats
// have it: those below a backslash at the end of a line, and those that are indented deeper than
// the option above when its value is empty or ends in a backslash.
class ContinuationFinder {
 public:
  // Each line of a text is passed once, in order.
  bool Continues(const ScannedLine& line);

 private:
  bool after_backslash_ = false;
  std::size_t open_indent_ = std::string_view::npos;  // of an option that may be continued
};

// Where the sections and options of a valid text are: of each section its first header, of each
// option the last line that sets it.
struct SectionOrigin {
  ScannedLine header;
  std::map<std::string, ScannedLine, storage::dmconfig::StringCaseCmp> options;
};
using OriginMap = std::map<std::string, SectionOrigin, storage::dmconfig::StringCaseCmp>;
OriginMap FindOrigins(std::string_view text);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_LINE_SCANNER_H_
