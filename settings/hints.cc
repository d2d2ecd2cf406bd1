#include "settings/hints.h"

#include <algorithm>

#include "settings/line_scanner.h"

namespace quarry::settings {

namespace {

constexpr char kCommentMarkHint[] =
    "put \"#\" first to make it a comment; only \"#\" and \";\" begin one";
constexpr char kIncludeHint[] = "there are no includes: write the lines of the other file here";

// ".include x", "!includedir x", "@import x", but not "include: x".
bool IsInclude(std::string_view line) {
  const std::size_t begin = line.find_first_not_of(".!@%-");
  if (begin == std::string_view::npos) return false;
  const std::string_view rest = line.substr(begin);
  const std::size_t end = rest.find_first_of(" \t\"'<:");
  if (rest.substr(std::min(end, rest.size()), 1) == ":") return false;
  const std::string word = Folded(rest.substr(0, end));
  return word == "include" || word == "includedir" || word == "include_dir" || word == "import";
}

bool HasOtherCommentMark(std::string_view line) {
  const std::string_view two = line.substr(0, 2);
  return line[0] == '!' || two == "//" || two == "/*" || two == "--";
}

// "NAME = VALUE" with the parts before and from `value` on; with these words when a part is empty,
// and when it is unclear what quotes were meant for.
std::string OptionExample(std::string_view line, std::size_t name_end, std::size_t value,
                          bool may_quote) {
  constexpr std::size_t kMaxExample = 60;
  may_quote = may_quote && line.size() <= kMaxExample && line.find('"') == std::string_view::npos;
  if (!may_quote || value == std::string_view::npos || name_end == 0) return "NAME = VALUE";
  return std::string(line.substr(0, name_end)) + " = " +
         std::string(WithoutTrailingBlanks(line.substr(value)));
}

}  // namespace

const char* TextAfterHeaderHint(std::string_view line, std::string_view text) {
  if (text[0] == '#' || text[0] == ';' || text.substr(0, 2) == "//") return kCommentHint;
  if (text[0] != ']') return "put it on a line of its own";
  if (line.substr(0, 2) == "[[") return "write one pair of brackets: sections have no levels";
  return "end the line at the first \"]\": a name cannot contain one";
}

bool HasLoneCarriageReturn(std::string_view line) {
  return WithoutTrailingBlanks(line).find('\r') != std::string_view::npos;
}

std::size_t FindColon(std::string_view text) { return std::min(text.find(": "), text.find(":\t")); }

std::string ColonHint(std::string_view line, std::size_t colon, bool may_quote) {
  return "write \"" +
         OptionExample(line, colon, line.find_first_not_of(" \t\r", colon + 1), may_quote) + '"';
}

std::string MissingEqualsHint(std::string_view line, bool may_quote) {
  if (IsInclude(line)) return kIncludeHint;
  if (line.back() == '\\') return kContinuationHint;
  if (HasOtherCommentMark(line)) return kCommentMarkHint;
  const std::size_t colon = FindColon(line);
  const std::size_t name_end =
      colon == std::string_view::npos ? line.find_first_of(" \t:\r") : colon;
  return "write \"" +
         OptionExample(line, name_end, line.find_first_not_of(" \t:\r", name_end), may_quote) +
         "\", or put \"#\" first to make it a comment";
}

}  // namespace quarry::settings
