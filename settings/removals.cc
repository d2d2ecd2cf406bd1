#include "settings/removals.h"

#include "settings/line_scanner.h"

namespace quarry::settings {

using storage::dmconfig::LineKind;

TextEdit UnsetOption(std::string_view text, const std::string& section, const std::string& option,
                     bool with_comment) {
  TextEdit edit;
  bool in_section = false;
  std::size_t comment_begin = 0;  // of the comment directly above; 0 is none
  LineScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) {
    if (line.kind == LineKind::kComment) {
      if (comment_begin == 0) comment_begin = line.number;
      continue;
    }
    if (line.kind == LineKind::kHeader) {
      in_section = SameName(section, std::string(line.header.name));
    }
    if (line.kind == LineKind::kOption && in_section &&
        SameName(option, std::string(line.option.name))) {
      const std::size_t begin = with_comment && comment_begin != 0 ? comment_begin : line.number;
      edit.push_back({begin, line.number - begin + 1, {}});
    }
    comment_begin = 0;
  }
  return edit;
}

}  // namespace quarry::settings
