#include "settings/file_lock.h"

#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <thread>
#include <utility>

#include "settings/error.h"

namespace quarry::settings {

bool LockTimer::Wait() {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::seconds kNotice(1);
  if (waited_ >= limit_) return false;
  if (waited_ >= kNotice && on_wait_) std::exchange(on_wait_, nullptr)();
  // The longer an edit has waited, the more often it tries, so that later ones do not keep it out:
  // every 8 ms at first, every 0.7 ms after a second. The moments differ from those of others.
  const Clock::time_point begin = Clock::now();
  const auto waited_ms = std::chrono::duration_cast<std::chrono::milliseconds>(waited_).count();
  const auto interval = std::max<std::int64_t>(800'000 / (waited_ms + 100), 100);
  const auto jitter = begin.time_since_epoch().count() % interval - interval / 2;
  std::this_thread::sleep_for(std::chrono::microseconds(interval + jitter));
  waited_ += Clock::now() - begin;
  return true;
}

void LockForEdit(int file, const std::string& name, LockTimer* timer) {
  while (flock(file, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) throw SystemError("lock " + name, name, errno);
    if (timer->Wait()) continue;
    throw Error(ErrorKind::kFailed, name, "another edit of " + name + " is running",
                "nothing was written; try again when it ends");
  }
}

}  // namespace quarry::settings
