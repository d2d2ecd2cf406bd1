// The advisory lock that keeps edits of one file apart.
#ifndef QUARRY_SETTINGS_FILE_LOCK_H_
#define QUARRY_SETTINGS_FILE_LOCK_H_

#include <chrono>
#include <functional>
#include <string>
#include <utility>

namespace quarry::settings {

// The time that one edit has to get all its locks, however often a file is replaced meanwhile.
class LockTimer {
 public:
  // Begins to count. `on_wait` is called once, after a second of waiting; it may be empty.
  LockTimer(std::chrono::milliseconds limit, std::function<void()> on_wait)
      : limit_(limit), on_wait_(std::move(on_wait)), begin_(Clock::now()), paused_(begin_) {}

  // The time from Pause to Resume does not count.
  void Pause() { paused_ = Clock::now(); }
  void Resume() { begin_ += Clock::now() - paused_; }

  // Throws Error once the limit is reached; `name` is that of the file for its message.
  void RequireTime(const std::string& name) const;

  // Sleeps until it is time to try again. Throws as RequireTime does.
  void Wait(const std::string& name);

 private:
  using Clock = std::chrono::steady_clock;

  const std::chrono::milliseconds limit_;
  std::function<void()> on_wait_;
  Clock::time_point begin_;
  Clock::time_point paused_;
};

// Locks the open file (flock) against other edits until it is closed, however this process ends.
// Throws Error; `name` is that of the file for its message.
void LockForEdit(int file, const std::string& name, LockTimer* timer);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_FILE_LOCK_H_
