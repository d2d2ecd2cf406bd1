// The advisory lock that keeps edits of one file apart.
#ifndef QUARRY_SETTINGS_FILE_LOCK_H_
#define QUARRY_SETTINGS_FILE_LOCK_H_

#include <chrono>
#include <functional>
#include <string>
#include <utility>

namespace quarry::settings {

// How long one edit waits for others, all its locks together.
class LockTimer {
 public:
  // `on_wait` is called once, after a second of waiting; it may be empty.
  LockTimer(std::chrono::milliseconds limit, std::function<void()> on_wait)
      : limit_(limit), on_wait_(std::move(on_wait)) {}

  // Sleeps until it is time to try again; false once the sleeps together have reached the limit.
  bool Wait();

 private:
  const std::chrono::milliseconds limit_;
  std::function<void()> on_wait_;
  std::chrono::nanoseconds waited_{};
};

// Locks the open file (flock) against other edits until it is closed, however this process ends.
// Throws Error; `name` is that of the file for its message.
void LockForEdit(int file, const std::string& name, LockTimer* timer);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_FILE_LOCK_H_
