#include "tools/scan.h"

namespace quarry::tool {

using storage::dmconfig::KindOf;
using storage::dmconfig::LineKind;
using storage::dmconfig::ParseHeader;
using storage::dmconfig::ParseOption;
using storage::dmconfig::WithoutLeadingBlanks;

namespace {

// A header that only a byte-order mark hides. The mark is refused; that every
// option after it stands in no section would be noise.
bool IsMarkedHeader(std::string_view text) {
  return text.substr(0, kByteOrderMark.size()) == kByteOrderMark &&
         text.substr(kByteOrderMark.size(), 1) == "[";
}

}  // namespace

bool TextScanner::Next(ScannedLine* line) {
  if (rest_.empty()) return false;
  *line = {};
  line->number = ++number_;
  line->raw = rest_.substr(0, rest_.find('\n'));
  rest_.remove_prefix(line->raw.size());
  if (!rest_.empty()) rest_.remove_prefix(1);

  line->text = WithoutLeadingBlanks(line->raw);
  line->kind = KindOf(line->text);
  if (line->kind == LineKind::kHeader) {
    line->header = ParseHeader(line->text);
    in_section_ = true;  // also after a faulty one, for the same reason
  }
  if (line->kind == LineKind::kOption) {
    line->option = ParseOption(line->text, in_section_);
    in_section_ = in_section_ || IsMarkedHeader(line->text);
  }
  return true;
}

OriginMap FindOrigins(std::string_view text) {
  OriginMap origins;
  OptionLines before_any_section;  // stays empty: the text is valid
  OptionLines* section = &before_any_section;
  TextScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) {
    if (line.kind == LineKind::kHeader) {
      section = &origins[std::string(line.header.name)];
    }
    if (line.kind == LineKind::kOption) {
      (*section)[std::string(line.option.name)] = line.number;
    }
  }
  return origins;
}

}  // namespace quarry::tool
