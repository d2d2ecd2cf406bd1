#include "tools/check/plain_password.h"

#include <algorithm>

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

std::string RedactedLine(std::string_view line) {
  const std::size_t password = FindPlainPassword(line);
  if (password == std::string_view::npos) return std::string(line);
  return std::string(line.substr(0, password)) + kMask;
}

}  // namespace

std::string RedactedText(std::string_view text) {
  std::string redacted;
  for (;;) {
    const std::size_t end = text.find('\n');
    redacted += RedactedLine(text.substr(0, end));
    if (end == std::string_view::npos) return redacted;
    redacted += '\n';
    text.remove_prefix(end + 1);
  }
}

settings::TextEdit RedactedEdit(settings::TextEdit edit) {
  for (settings::LineEdit& one : edit) {
    for (std::string& line : one.added) line = RedactedLine(line);
  }
  return edit;
}

std::string RedactedValue(const std::string& option, const std::string& value) {
  const std::string before = option + " = ";
  const std::size_t password = FindPlainPassword(before + value);
  if (password == std::string::npos) return value;
  return value.substr(0, password - std::min(before.size(), password)) + kMask;
}

}  // namespace quarry::tool
