#include "tools/check/ownership.h"

#include <pwd.h>

#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

namespace {

// Empty for a user without a name.
std::string NameOf(uid_t user) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
  const passwd* const entry = getpwuid(user);
  return entry == nullptr ? "" : entry->pw_name;
}

}  // namespace

std::string UserText(uid_t user) {
  const std::string name = NameOf(user);
  return "user " + (name.empty() ? std::to_string(user) : name);
}

std::string CommandAs(uid_t user, const std::string& command) {
  const std::string name = NameOf(user);
  if (!name.empty()) return "runuser -u " + ShellQuotedFile(name) + " -- " + command;
  const std::string number = std::to_string(user);
  return "setpriv --reuid=" + number + " --clear-groups " + command;
}

}  // namespace quarry::tool
