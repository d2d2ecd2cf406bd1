// Progress line for long runs on a terminal.
#ifndef QUARRY_TOOLS_TERMINAL_PROGRESS_H_
#define QUARRY_TOOLS_TERMINAL_PROGRESS_H_

#include <chrono>
#include <cstddef>
#include <string>

namespace quarry::tool {

// Shows a line such as "120 of 10000 files checked" on standard error, if that is a terminal, when
// the run has taken a second.
class Progress {
 public:
  Progress(std::string what, std::size_t total);

  // Counts one more as done.
  void Step();

  // Removes the line, so that other text can be written there.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  const std::string what_;
  const std::size_t total_;
  const bool enabled_;
  std::size_t done_ = 0;
  bool shown_ = false;
  Clock::time_point next_;  // no line before
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_PROGRESS_H_
