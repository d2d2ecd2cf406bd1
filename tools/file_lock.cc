#include "tools/file_lock.h"

#include <sys/file.h>
#include <sys/time.h>

#include <cerrno>
#include <csignal>

#include "tools/errors.h"

namespace quarry::tool {

namespace {

constexpr int kLongestWait = 10;  // seconds

// Interrupts system calls once a second during its life.
class Ticks {
 public:
  Ticks() {
    struct sigaction interrupt {};
    interrupt.sa_handler = [](int) {};
    (void)sigaction(SIGALRM, &interrupt, &action_before_);
    sigset_t alarm;
    sigemptyset(&alarm);
    sigaddset(&alarm, SIGALRM);
    (void)pthread_sigmask(SIG_UNBLOCK, &alarm, &mask_before_);
    const itimerval second = {{1, 0}, {1, 0}};
    (void)setitimer(ITIMER_REAL, &second, nullptr);
  }
  ~Ticks() {
    const itimerval never = {{0, 0}, {0, 0}};
    (void)setitimer(ITIMER_REAL, &never, nullptr);
    (void)pthread_sigmask(SIG_SETMASK, &mask_before_, nullptr);
    (void)sigaction(SIGALRM, &action_before_, nullptr);
  }
  Ticks(const Ticks&) = delete;
  Ticks& operator=(const Ticks&) = delete;

 private:
  struct sigaction action_before_ {};
  sigset_t mask_before_;
};

}  // namespace

void LockForEdit(int file, const std::string& name) {
  const Ticks ticks;
  for (int seconds = 0; seconds < kLongestWait; ++seconds) {
    if (flock(file, LOCK_EX) == 0) return;
    if (errno != EINTR) throw SystemError("lock", name, errno);
    if (seconds == 0) {
      WriteStandardError("quarry-config: waiting for another edit of " + name + " to end\n");
    }
  }
  throw ToolError(kExitFailed, ErrorReport("another edit of " + name + " is running",
                                           "nothing was written; try again when it ends"));
}

}  // namespace quarry::tool
