#include "tools/terminal/progress.h"

#include <utility>

#include "tools/terminal/errors.h"
#include "tools/terminal/terminal.h"

namespace quarry::tool {

namespace {

constexpr std::chrono::milliseconds kFirstLineAfter(1000);
constexpr std::chrono::milliseconds kBetweenLines(200);
const char kEmptyLine[] = "\r\x1b[K";

}  // namespace

Progress::Progress(std::string what, std::size_t total)
    : what_(std::move(what)),
      total_(total),
      enabled_(total > 1 && IsStandardErrorTerminal()),
      next_(Clock::now() + kFirstLineAfter) {}

void Progress::Step() {
  ++done_;
  if (!enabled_ || Clock::now() < next_) return;
  next_ = Clock::now() + kBetweenLines;
  shown_ = true;
  WriteStandardError(kEmptyLine + std::to_string(done_) + " of " + std::to_string(total_) + ' ' +
                     what_);
}

void Progress::Clear() {
  if (shown_) WriteStandardError(kEmptyLine);
  shown_ = false;
}

}  // namespace quarry::tool
