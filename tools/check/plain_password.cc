#include "tools/check/plain_password.h"

#include <algorithm>
#include <map>
#include <utility>

#include "platform/local/sealed_password.h"
#include "settings/line_scanner.h"
#include "tools/check/password_line.h"
#include "tools/terminal/redactor.h"

namespace quarry::tool {

namespace {

// Whether the text is nothing but a sealed password, whole or damaged.
bool IsSealedForm(std::string_view text) {
  constexpr std::string_view kBase64Characters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  if (text.substr(0, platform::kSealedPrefix.size()) != platform::kSealedPrefix) return false;
  text.remove_prefix(platform::kSealedPrefix.size());
  return text.find_first_not_of(kBase64Characters) == std::string_view::npos;
}

// The offset of a password in the line that is not sealed; npos when there is none.
std::size_t FindPlainPassword(std::string_view line) {
  const std::size_t offset = FindPassword(line);
  if (offset == std::string_view::npos) return offset;
  const std::string_view password = settings::WithoutTrailingBlanks(line.substr(offset));
  return password.empty() || IsSealedForm(password) ? std::string_view::npos : offset;
}

std::string Redacted(std::string_view line, std::size_t password) {
  if (password == std::string_view::npos) return std::string(line);
  return std::string(line.substr(0, password)) + kMask;
}

std::string RedactedLine(std::string_view line) { return Redacted(line, FindPlainPassword(line)); }

// The line with the password masked that it or `other` names. An option that is renamed has the
// same value in both.
std::string RedactedLine(std::string_view line, std::string_view other) {
  const std::size_t own = FindPlainPassword(line);
  const std::size_t others = FindPlainPassword(other);
  return Redacted(line, own == std::string_view::npos && others != own
                            ? FindEnd(line, other.substr(others))
                            : own);
}

}  // namespace

RedactedChange RedactChange(std::string_view text, settings::TextEdit edit) {
  std::map<std::size_t, std::string*> replacements;  // of single lines, by their numbers
  for (settings::LineEdit& one : edit) {
    if (one.removed == 1 && one.added.size() == 1) {
      replacements[one.line] = &one.added.front();
    } else {
      for (std::string& line : one.added) line = RedactedLine(line);
    }
  }
  std::string redacted;
  for (std::size_t number = 1;; ++number) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    const auto replacement = replacements.find(number);
    if (replacement == replacements.end()) {
      redacted += RedactedLine(line);
    } else {
      std::string& added = *replacement->second;
      redacted += RedactedLine(line, added);
      added = RedactedLine(added, line);
    }
    if (end == std::string_view::npos) return {std::move(redacted), std::move(edit)};
    redacted += '\n';
    text.remove_prefix(end + 1);
  }
}

std::string RedactedValue(const std::string& option, const std::string& value) {
  const std::string before = option + " = ";
  const std::size_t password = FindPlainPassword(before + value);
  if (password == std::string::npos) return value;
  return value.substr(0, password - std::min(before.size(), password)) + kMask;
}

}  // namespace quarry::tool
