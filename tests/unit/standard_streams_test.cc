#include "tools/terminal/standard_streams.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <vector>

#include "settings/error.h"
#include "tests/support/support.h"
#include "tools/terminal/editor.h"
#include "tools/terminal/errors.h"
#include "tools/terminal/password_prompt.h"

namespace {

// The calls that fail, in this order, and how.
struct Failure {
  std::string call;
  int error;
};
std::vector<Failure> failures;

bool Fails(const char* call) {
  if (failures.empty() || failures.front().call != call) return false;
  errno = failures.front().error;
  failures.erase(failures.begin());
  return true;
}

}  // namespace

// In place of the system's, to fail.
extern "C" {
ssize_t read(int fd, void* buf, std::size_t nbytes) {
  return Fails("read") ? -1 : syscall(SYS_read, fd, buf, nbytes);
}
ssize_t write(int fd, const void* buf, std::size_t n) {
  return Fails("write") ? -1 : syscall(SYS_write, fd, buf, n);
}
int poll(pollfd* fds, nfds_t nfds, int timeout) {
  return Fails("poll") ? -1 : static_cast<int>(syscall(SYS_poll, fds, nfds, timeout));
}
int close(int fd) {
  const auto result = static_cast<int>(syscall(SYS_close, fd));
  return Fails("close") ? -1 : result;
}
pid_t waitpid(pid_t pid, int* stat_loc, int options) {
  if (Fails("waitpid")) return -1;
  return static_cast<pid_t>(syscall(SYS_wait4, pid, stat_loc, options, nullptr));
}
}

namespace quarry::tool {
namespace {

// Makes a stream of a file for the object's lifetime.
class ScopedRedirection {
 public:
  ScopedRedirection(int stream, const std::string& file) : stream_(stream), saved_(dup(stream)) {
    const int opened = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    dup2(opened, stream_);
    close(opened);
  }
  ~ScopedRedirection() {
    dup2(saved_, stream_);
    close(saved_);
  }
  ScopedRedirection(const ScopedRedirection&) = delete;
  ScopedRedirection& operator=(const ScopedRedirection&) = delete;

 private:
  const int stream_, saved_;
};

TEST(StandardStreams, RetryWhatIsInterruptedAndReportWhatFails) {
  const TempFolder folder;
  folder.Write("in", "text\n");
  setenv("EDITOR", "true", 1);
  const auto input = [] { EXPECT_EQ(ReadInput("-"), "text\n"); };
  const auto output = [] { WriteStandardOutput("text\n"); };
  const auto message = [] { WriteStandardError("text\n"); };
  const auto password = [] {
    PasswordInput typed;
    typed.Read("");
    EXPECT_EQ(typed.password(), "text");
  };
  const auto edit = [] {
    EditorCopy copy("name", "text");
    EXPECT_TRUE(copy.Edit());
    copy.Discard();
  };
  struct Case {
    std::function<void()> use;
    std::vector<Failure> failures;
    std::string error;
    std::string written;
  };
  const Case cases[] = {
      {input, {{"read", EINTR}, {"read", EAGAIN}, {"poll", EINTR}}, "", ""},
      {input, {{"read", EIO}}, "cannot read <stdin>: Input/output error", ""},
      {input,
       {{"read", EAGAIN}, {"poll", ENOMEM}},
       "cannot read <stdin>: Cannot allocate memory",
       ""},
      {output, {{"write", EINTR}, {"write", EAGAIN}, {"close", EINTR}}, "", "text\n"},
      {output, {{"write", EIO}}, "cannot write standard output: Input/output error", ""},
      {output, {{"close", EIO}}, "cannot write standard output: Input/output error", "text\n"},
      {message, {{"write", EINTR}, {"write", EAGAIN}}, "", "text\n"},
      {password, {{"read", EINTR}, {"read", EAGAIN}, {"poll", EINTR}}, "", ""},
      {password, {{"read", EIO}}, "cannot read standard input: Input/output error", ""},
      {edit, {{"waitpid", EINTR}}, "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(&c - cases));
    folder.Write("out", "");
    std::string error;
    {
      const ScopedRedirection in(STDIN_FILENO, folder.Path("in"));
      const ScopedRedirection out(STDOUT_FILENO, folder.Path("out"));
      const ScopedRedirection err(STDERR_FILENO, folder.Path("out"));
      failures = c.failures;
      try {
        c.use();
      } catch (const settings::Error& failed) {
        error = failed.message;
      }
    }
    EXPECT_TRUE(failures.empty());
    EXPECT_EQ(error, c.error);
    EXPECT_EQ(folder.Read("out"), c.written);
  }
}

}  // namespace
}  // namespace quarry::tool
