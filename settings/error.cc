#include "settings/error.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace quarry::settings {

Error::Error(ErrorKind error_kind, std::string error_file, std::string error_message,
             std::string error_hint, std::size_t error_line)
    : kind(error_kind),
      file(std::move(error_file)),
      line(error_line),
      message(std::move(error_message)),
      hint(std::move(error_hint)) {}

Error SystemError(const std::string& action, const std::string& file, int error_number,
                  const std::string& hint) {
  Error error(ErrorKind::kFailed, file,
              "cannot " + action + ": " + std::generic_category().message(error_number), hint);
  error.error_number = error_number;
  return error;
}

std::string HintForLackOf(const std::string& feature, int error_number) {
  switch (error_number) {
    case EPERM:
    case ENOLCK:
    case ENOSYS:
    case EOPNOTSUPP:
      return "an edit needs a file system with " + feature +
             "; edit a copy on one, and copy it back";
    default:
      return "";
  }
}

std::string Quoted(std::string_view name) {
  constexpr std::size_t kMaxBytes = 60;
  if (name.size() <= kMaxBytes) return '"' + std::string(name) + '"';
  std::size_t end = kMaxBytes;
  const auto cuts_a_character = [&](std::size_t at) {
    return (static_cast<unsigned char>(name[at]) & 0xC0U) == 0x80U;
  };
  while (end > kMaxBytes - 3 && cuts_a_character(end)) --end;
  if (cuts_a_character(end)) end = kMaxBytes;  // not UTF-8
  return '"' + std::string(name.substr(0, end)) + "...\"";
}

}  // namespace quarry::settings
