#include "log.h"

#include <algorithm>
#include <ctime>
#include <iomanip>
#include <sstream>

namespace volume_daemon {

namespace {

const char* NameOf(Level level) {
  switch (level) {
    case Level::kDebug:
      return "debug";
    case Level::kInfo:
      return "info";
    case Level::kWarning:
      return "warning";
    case Level::kError:
      break;
  }
  return "error";
}

std::string Now() {
  const std::time_t now = std::time(nullptr);
  std::tm utc = {};
  gmtime_r(&now, &utc);
  std::ostringstream text;
  text << std::put_time(&utc, "%FT%TZ");
  return text.str();
}

}  // namespace

void Log::Write(Level level, const std::string& text) {
  if (level >= min_level_) WriteLine(level, text);
}

void StreamLog::WriteLine(Level level, const std::string& text) {
  std::string line = Now() + ' ' + NameOf(level) + ' ' + text;
  // A name from a file may hold control characters, which would forge a line or confuse a terminal.
  std::replace_if(
      line.begin(), line.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
  const std::lock_guard<std::mutex> lock(mutex_);
  *out_ << line + '\n' << std::flush;
}

}  // namespace volume_daemon
