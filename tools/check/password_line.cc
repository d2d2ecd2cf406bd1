#include "tools/check/password_line.h"

#include <algorithm>
#include <string>

#include "platform/config_names.h"
#include "settings/line_scanner.h"
#include "settings/suggestions.h"

namespace quarry::tool {

namespace {

constexpr std::string_view kSeparators = " \t=:\"'";
constexpr std::string_view kBeforeNames = " \t\r=:\"'";

std::string PasswordName() {
  return ::storage::config::EntryName(::storage::config::kEntryPassword);
}

// The end of the first word in the line that is the name of the password, in any letter case; npos
// when there is none.
std::size_t EndOfPasswordName(const std::string& line) {
  const std::string name = PasswordName();
  for (std::size_t at = 0; at + name.size() <= line.size(); ++at) {
    const std::string part = line.substr(at, name.size());
    const std::size_t end = at + name.size();
    const bool whole = end == line.size() || kSeparators.find(line[end]) != std::string::npos;
    if (whole && settings::SameName(part, name)) return end;
  }
  return std::string::npos;
}

// The same for a word before the first "=" that is spelled much like the name.
std::size_t EndOfNearName(const std::string& line) {
  const std::string text = line.substr(0, line.find('='));
  for (std::size_t begin = 0;;) {
    begin = text.find_first_not_of(kBeforeNames, begin);
    if (begin == std::string::npos) return begin;
    const std::size_t end = std::min(text.find_first_of(kSeparators, begin), text.size());
    const std::string word = text.substr(begin, end - begin);
    if (!settings::SuggestNames(word, {PasswordName()}).empty()) return end;
    begin = end;
  }
}

}  // namespace

std::size_t FindPassword(std::string_view line) {
  constexpr std::size_t kSearched = 1000;  // the rest of a longer line is a value
  const std::string searched(line.substr(0, kSearched));
  std::size_t end = EndOfPasswordName(searched);
  if (end == std::string::npos) end = EndOfNearName(searched);
  return end == std::string::npos ? end : line.find_first_not_of(kSeparators, end);
}

}  // namespace quarry::tool
