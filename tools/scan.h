// A text line by line, with what the grammar says of each line. Unlike a load
// it goes on after an invalid line.
#ifndef QUARRY_TOOLS_SCAN_H_
#define QUARRY_TOOLS_SCAN_H_

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "dmconfig/config.h"
#include "dmconfig/line.h"

namespace quarry::tool {

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Whether the line is a header that only a byte-order mark hides. The mark is
// refused; that every option after it stands in no section would be noise.
bool IsMarkedHeader(std::string_view text);

// Whether the two name the same section or option.
bool SameName(const std::string& one, const std::string& other);

// All views are into the text.
struct ScannedLine {
  std::size_t number = 0;  // from 1
  std::string_view raw;    // without its line feed
  std::string_view text;   // and without its leading blanks
  storage::dmconfig::LineKind kind = storage::dmconfig::LineKind::kBlank;
  storage::dmconfig::HeaderLine header;  // of a kHeader
  storage::dmconfig::OptionLine option;  // of a kOption
};

class TextScanner {
 public:
  // Borrows the text.
  explicit TextScanner(std::string_view text) : rest_(text) {}

  // False at the end of the text.
  bool Next(ScannedLine* line);

 private:
  std::string_view rest_;
  std::size_t number_ = 0;
  bool in_section_ = false;
};

// Where a valid text has its sections, and its options by section: the first
// header of each and the line that counts of each, which is the last one that
// sets it.
struct SectionOrigin {
  ScannedLine header;
  std::map<std::string, ScannedLine, storage::dmconfig::StringCaseCmp> options;
};
using OriginMap = std::map<std::string, SectionOrigin, storage::dmconfig::StringCaseCmp>;
OriginMap FindOrigins(std::string_view text);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_SCAN_H_
