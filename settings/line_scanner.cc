#include "settings/line_scanner.h"

#include <algorithm>
#include <cstdint>

#include "settings/name_table.h"

namespace quarry::settings {

using storage::dmconfig::KindOf;
using storage::dmconfig::LineFault;
using storage::dmconfig::LineKind;
using storage::dmconfig::ParseHeader;
using storage::dmconfig::ParseOption;
using storage::dmconfig::WithoutLeadingBlanks;

namespace {

char FoldedByte(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string_view BeforeNul(std::string_view name) { return name.substr(0, name.find('\0')); }

}  // namespace

bool IsHeaderAfterBom(std::string_view text) {
  return text.substr(0, kByteOrderMark.size()) == kByteOrderMark &&
         text.substr(kByteOrderMark.size(), 1) == "[";
}

std::string_view WithoutTrailingBlanks(std::string_view text) {
  return text.substr(0, text.find_last_not_of(" \t\r") + 1);
}

std::string Folded(std::string_view text) {
  std::string folded(text);
  for (char& c : folded) c = FoldedByte(c);
  return folded;
}

bool SameName(std::string_view one, std::string_view other) noexcept {
  if (one == other) return true;
  for (;;) {
    const std::uint64_t word = TakeFoldedWord(&one);
    if (word != TakeFoldedWord(&other)) return false;
    if (word == 0) return true;
  }
}

bool IsNameBefore(std::string_view one, std::string_view other) noexcept {
  one = BeforeNul(one);
  other = BeforeNul(other);
  return std::lexicographical_compare(one.begin(), one.end(), other.begin(), other.end(),
                                      [](char left, char right) {
                                        return static_cast<unsigned char>(FoldedByte(left)) <
                                               static_cast<unsigned char>(FoldedByte(right));
                                      });
}

LineFault ScannedLine::fault() const {
  return kind == LineKind::kHeader ? header.fault : option.fault;
}

bool LineScanner::Next(ScannedLine* line) {
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
    in_section_ = true;  // after an invalid header, too: what follows is meant to be in it
  }
  if (line->kind == LineKind::kOption) {
    line->option = ParseOption(line->text, in_section_);
    in_section_ = in_section_ || IsHeaderAfterBom(line->text);
  }
  return true;
}

bool ContinuationFinder::Continues(const ScannedLine& line) {
  if (line.kind == LineKind::kComment) return false;
  if (line.kind != LineKind::kOption) {
    *this = {};
    return false;
  }
  const std::size_t indent = line.raw.size() - line.text.size();
  const bool continues =
      after_backslash_ || (open_indent_ != std::string_view::npos && indent > open_indent_);
  const std::string_view value =
      WithoutTrailingBlanks(line.fault() == LineFault::kNone ? line.option.value : line.text);
  after_backslash_ = !value.empty() && value.back() == '\\';
  if (!continues) {
    open_indent_ = value.empty() || after_backslash_ ? indent : std::string_view::npos;
  }
  return continues;
}

OriginMap FindOrigins(std::string_view text) {
  OriginMap origins;
  SectionOrigin before_any_section;  // stays empty: the text is valid
  SectionOrigin* section = &before_any_section;
  LineScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) {
    if (line.kind == LineKind::kHeader) {
      section = &origins[std::string(line.header.name)];
      if (section->header.number == 0) section->header = line;
    }
    if (line.kind == LineKind::kOption) {
      section->options[std::string(line.option.name)] = line;
    }
  }
  return origins;
}

}  // namespace quarry::settings
