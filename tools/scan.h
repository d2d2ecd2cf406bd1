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

// For every option of a valid text the number of the line that counts, which is
// the last one that sets it; by section and option.
using OptionLines =
    std::map<std::string, std::size_t, storage::dmconfig::StringCaseCmp>;
using OriginMap =
    std::map<std::string, OptionLines, storage::dmconfig::StringCaseCmp>;
OriginMap FindOrigins(std::string_view text);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_SCAN_H_
