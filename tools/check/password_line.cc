#include "tools/check/password_line.h"

#include <algorithm>
#include <string>

#include "platform/config_names.h"
#include "settings/line_scanner.h"
#include "settings/suggestions.h"

namespace quarry::tool {

using ::quarry::storage::dmconfig::LineFault;
using ::quarry::storage::dmconfig::LineKind;

namespace {

constexpr std::string_view kSeparators = " \t=:\"'";
constexpr std::string_view kAfterNames = " \t=:\"'>|";  // "<password>x", "password|x"
constexpr std::string_view kBeforeNames = " \t\r=:\"'>|";

// Folded.
const std::string& PasswordName() {
  static const std::string kName =
      settings::Folded(::storage::config::EntryName(::storage::config::kEntryPassword));
  return kName;
}

// All names and lines below are folded.

// The end of the first word in the line that ends in the name of the password; npos when there is
// none.
std::size_t EndOfPasswordName(const std::string& line) {
  const std::string& name = PasswordName();
  for (std::size_t at = 0; (at = line.find(name, at)) != std::string::npos; ++at) {
    const std::size_t end = at + name.size();
    if (end == line.size() || kAfterNames.find(line[end]) != std::string::npos) return end;
  }
  return std::string::npos;
}

bool IsUsualForSecrets(std::string_view name) {
  for (const char* part : {"passw", "secret", "token"}) {
    if (name.find(part) != std::string_view::npos) return true;
  }
  constexpr std::string_view kEnd = "pwd";
  return name.size() >= kEnd.size() &&
         name.compare(name.size() - kEnd.size(), kEnd.size(), kEnd) == 0;
}

// Where option names may begin: in "[a] x = 1", after the header.
std::size_t BeginOfNames(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBeforeNames);
  if (first == std::string_view::npos || text[first] != '[') return first;
  const std::size_t close = text.find(']', first);
  return close == std::string_view::npos ? first : close + 1;
}

// The end of the first word before the first "=" for which `is_name(word, offset)` is true; npos
// when there is none. Offsets count from where names may begin.
template <typename IsName>
std::size_t EndOfName(std::string_view line, IsName is_name) {
  const std::string_view text = line.substr(0, line.find('='));
  const std::size_t first = BeginOfNames(text);
  for (std::size_t begin = first;;) {
    begin = text.find_first_not_of(kBeforeNames, begin);
    if (begin == std::string_view::npos) return begin;
    const std::size_t end = std::min(text.find_first_of(kAfterNames, begin), text.size());
    if (is_name(text.substr(begin, end - begin), begin - first)) return end;
    begin = end;
  }
}

bool IsMisspelledPassword(std::string_view name, std::size_t offset) {
  constexpr std::size_t kSpellingChecked = 1000;  // what comes later in a line is a value
  return offset < kSpellingChecked && settings::IsSpelledLike(name, PasswordName());
}

std::size_t EndOfPassword(const std::string& line) {
  return std::min(EndOfPasswordName(line), EndOfName(line, IsMisspelledPassword));
}

// The offset of what follows a name that ends at `end`.
std::size_t AfterName(std::string_view line, std::size_t end) {
  return end == std::string::npos ? end
                                  : std::min(line.find_first_not_of(kSeparators, end), line.size());
}

// Whether the line names a secret that the next line may hold, or hold the rest of.
bool IsContinuedSecret(const settings::ScannedLine& line) {
  if (line.kind != LineKind::kOption) return false;
  const std::string_view value =
      settings::WithoutTrailingBlanks(line.fault() == LineFault::kNone ? line.option.value : "");
  if (value.find_first_not_of(kSeparators) != std::string_view::npos && value.back() != '\\') {
    return false;
  }
  const std::size_t secret = FindSecret(line.raw);
  if (secret == std::string_view::npos) return false;
  const std::string_view part = settings::WithoutTrailingBlanks(line.raw.substr(secret));
  // Marks alone are no secret: "secret: |" of YAML.
  return part.find_first_not_of(kAfterNames) == std::string_view::npos || part.back() == '\\';
}

// Whether the line is no secret even below the name of one. A secret may look like a comment, like
// an invalid header, or follow an "=" that is on its line.
bool IsOfItsOwn(const settings::ScannedLine& line, bool continues) {
  if (line.kind == LineKind::kComment) return false;
  if (line.kind == LineKind::kHeader && line.fault() == LineFault::kNone) return true;
  return !continues && line.text.find('=') != std::string_view::npos && line.text[0] != '=';
}

}  // namespace

std::size_t FindPassword(std::string_view line) {
  return AfterName(line, EndOfPassword(settings::Folded(line)));
}

std::size_t FindSecret(std::string_view line) {
  const std::string folded = settings::Folded(line);
  const auto is_usual = [](std::string_view name, std::size_t) { return IsUsualForSecrets(name); };
  return AfterName(line, std::min(EndOfPassword(folded), EndOfName(folded, is_usual)));
}

std::size_t FindEnd(std::string_view line, std::string_view end) {
  const std::size_t offset = line.size() - std::min(line.size(), end.size());
  return line.substr(offset) == end ? offset : std::string_view::npos;
}

SecretLines::SecretLines(std::string_view text) {
  settings::LineScanner scanner(text);
  settings::ContinuationFinder continuations;
  bool is_open = false;  // whether the next line may continue a secret
  for (settings::ScannedLine line; scanner.Next(&line);) {
    const bool continues = continuations.Continues(line);
    if (line.kind == LineKind::kBlank) continue;
    if (is_open && !IsOfItsOwn(line, continues)) {
      continued_.insert(line.number);
    } else {
      is_open = IsContinuedSecret(line);
    }
  }
}

std::size_t SecretLines::Find(std::size_t number, std::string_view line) const {
  if (continued_.count(number) > 0) return line.find_first_not_of(" \t\r");
  const std::size_t secret = FindSecret(line);
  return secret == line.size() ? std::string_view::npos : secret;
}

}  // namespace quarry::tool
