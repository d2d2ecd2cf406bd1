#include "settings/file_lock.h"

#include <sys/file.h>

#include <cerrno>
#include <thread>
#include <utility>

#include "settings/error.h"

namespace quarry::settings {

bool LockTimer::Wait() {
  constexpr std::chrono::seconds kNotice(1);
  const Clock::time_point now = Clock::now();
  if (start_ == Clock::time_point()) start_ = now;
  if (now - start_ >= limit_) return false;
  if (now - start_ >= kNotice && on_wait_) std::exchange(on_wait_, nullptr)();
  // Whoever waits tries at moments of its own, about as often as an edit takes, so that no waiter
  // is kept out by others that come later.
  const auto jitter = now.time_since_epoch().count() / 1000 % 3000;
  std::this_thread::sleep_for(std::chrono::microseconds(1000 + jitter));
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
