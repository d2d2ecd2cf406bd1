#include "tools/terminal/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace quarry::tool {

namespace {

std::string_view Environment(const char* name) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the program has one thread.
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

}  // namespace

bool IsStandardOutputTerminal() { return isatty(STDOUT_FILENO) == 1; }

bool IsStandardErrorTerminal() {
  const std::string_view terminal = Environment("TERM");
  return isatty(STDERR_FILENO) == 1 && !terminal.empty() && terminal != "dumb";
}

bool SupportsColours() { return Environment("NO_COLOR").empty() && IsStandardErrorTerminal(); }

std::size_t StandardErrorColumns() {
  constexpr std::size_t kUsualColumns = 80;
  winsize size = {};
  const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : kUsualColumns;
}

}  // namespace quarry::tool
