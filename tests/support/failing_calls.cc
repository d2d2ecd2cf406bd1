#include "tests/support/failing_calls.h"

#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

std::vector<FailingCall> failing_calls;

bool Fails(const char* call) {
  if (failing_calls.empty() || failing_calls.front().name != call) return false;
  errno = failing_calls.front().error;
  failing_calls.erase(failing_calls.begin());
  return true;
}

template <typename... Arguments>
static int Call(const char* name, long number, Arguments... arguments) {
  return Fails(name) ? -1 : static_cast<int>(syscall(number, arguments...));
}

// In place of the C library's.
extern "C" {
ssize_t read(int fd, void* buf, size_t nbytes) { return Call("read", SYS_read, fd, buf, nbytes); }
ssize_t write(int fd, const void* buf, size_t n) { return Call("write", SYS_write, fd, buf, n); }
int poll(pollfd* fds, nfds_t nfds, int timeout) {
  return Call("poll", SYS_poll, fds, nfds, timeout);
}
int close(int fd) { return Call("close", SYS_close, fd); }
pid_t waitpid(pid_t pid, int* stat_loc, int options) {
  return Call("waitpid", SYS_wait4, pid, stat_loc, options, nullptr);
}
int fchmod(int fd, mode_t mode) noexcept { return Call("fchmod", SYS_fchmod, fd, mode); }
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): a keyword there
int renameat2(int oldfd, const char* old, int newfd, const char* name, unsigned flags) noexcept {
  return Call("renameat2", SYS_renameat2, oldfd, old, newfd, name, flags);
}
}
