#include "settings/file_lock.h"

#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <thread>
#include <utility>

#include "settings/error.h"

namespace quarry::settings {

void LockTimer::RequireTime(const std::string& name) const {
  // In the unit of the limit, which may be the longest there is.
  if (std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin_) < limit_) return;
  throw Error(ErrorKind::kFailed, name, "another edit of " + name + " is running",
              "nothing was written; try again when it ends");
}

void LockTimer::Wait(const std::string& name) {
  constexpr std::chrono::seconds kNotice(1);
  RequireTime(name);
  const Clock::time_point now = Clock::now();
  if (now - begin_ >= kNotice && on_wait_) std::exchange(on_wait_, nullptr)();
  // The longer an edit has waited, the more often it tries, so that later ones do not keep it out:
  // every 8 ms at first, every 0.7 ms after a second. The moments differ from those of others.
  const auto waited_ms =
      std::chrono::duration_cast<std::chrono::milliseconds>(now - begin_).count();
  const auto interval = std::max<std::int64_t>(800'000 / (waited_ms + 100), 100);
  const auto jitter = now.time_since_epoch().count() % interval - interval / 2;
  std::this_thread::sleep_for(std::chrono::microseconds(interval + jitter));
}

void LockForEdit(int file, const std::string& name, LockTimer* timer) {
  while (flock(file, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) {
      throw SystemError("lock " + name, name, errno, HintForLackOf("file locks (flock)", errno));
    }
    timer->Wait(name);
  }
}

}  // namespace quarry::settings
