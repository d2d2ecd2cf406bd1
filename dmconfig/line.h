// The grammar of a single line of configuration text, in one place: the reader parses lines with it
// and the quarry-config program explains and edits them with it. Not installed. Results are views
// into the line that was given.
//
// A line is passed without its line feed. What depends on other lines (the current section, the
// pending comment) is up to the caller.
#ifndef QUARRY_DMCONFIG_LINE_H_
#define QUARRY_DMCONFIG_LINE_H_

#include <cstddef>
#include <string_view>

namespace quarry::storage::dmconfig {

enum class LineKind { kBlank, kComment, kHeader, kOption };

enum class LineFault {
  kNone,
  kHeaderNotClosed,   // "[" without "]"
  kSectionNameEmpty,  // "[]"
  kTextAfterHeader,   // "[a] ; note", "[a]]"
  kNoSection,         // an option line before the first header
  kNoEquals,          // an option line without "="
  kOptionNameEmpty,   // "= value"
};

// `offset` is the position of the fault, in bytes from the start of the line without its leading
// whitespace.
struct HeaderLine {
  LineFault fault = LineFault::kNone;
  std::size_t offset = 0;
  std::string_view name;  // set when the fault is kNone or kTextAfterHeader
};

struct OptionLine {
  LineFault fault = LineFault::kNone;
  std::size_t offset = 0;
  std::string_view name;  // both set when the fault is kNone
  std::string_view value;
};

// Removes leading spaces, tabs and carriage returns; nothing at the right end. All functions below
// expect a line without them.
inline std::string_view WithoutLeadingBlanks(std::string_view line) {
  std::size_t blanks = 0;
  while (blanks < line.size() &&
         (line[blanks] == ' ' || line[blanks] == '\t' || line[blanks] == '\r')) {
    ++blanks;
  }
  return line.substr(blanks);
}

inline LineKind KindOf(std::string_view line) {
  if (line.empty()) return LineKind::kBlank;
  if (line[0] == '#' || line[0] == ';') return LineKind::kComment;
  if (line[0] == '[') return LineKind::kHeader;
  return LineKind::kOption;
}

// The name is the text between "[" and the first "]", whitespace included.
inline HeaderLine ParseHeader(std::string_view line) {
  const std::size_t close = line.find(']');
  if (close == std::string_view::npos) {
    return {LineFault::kHeaderNotClosed, 0, {}};
  }
  if (close == 1) return {LineFault::kSectionNameEmpty, close, {}};

  const std::string_view name = line.substr(1, close - 1);
  const std::size_t extra = line.find_first_not_of(" \t\r\n", close + 1);
  if (extra == std::string_view::npos) return {LineFault::kNone, 0, name};
  return {LineFault::kTextAfterHeader, extra, name};
}

// Removes spaces and tabs at both ends, but leaves a text of nothing else whole.
inline std::string_view Trimmed(std::string_view text) {
  const auto is_blank = [](char c) { return c == ' ' || c == '\t'; };
  std::size_t begin = 0, end = text.size();
  while (begin < end && is_blank(text[begin])) ++begin;
  if (begin == end) return text;
  while (is_blank(text[end - 1])) --end;
  return text.substr(begin, end - begin);
}

// `in_section` says whether a header came before; its absence is reported before any other fault.
inline OptionLine ParseOption(std::string_view line, bool in_section) {
  if (!in_section) return {LineFault::kNoSection, 0, {}, {}};
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return {LineFault::kNoEquals, 0, {}, {}};
  if (equals == 0) return {LineFault::kOptionNameEmpty, 0, {}, {}};
  return {LineFault::kNone, 0, Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1))};
}

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_LINE_H_
