#include "tools/terminal/standard_streams.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
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

// Makes the streams those of the three descriptors, which it closes.
void SetStreams(const std::array<int, 3>& descriptors) {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    const int descriptor = descriptors.at(static_cast<std::size_t>(stream));
    dup2(descriptor, stream);
    close(descriptor);
  }
}

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
    const std::array<int, 3> before = {dup(STDIN_FILENO), dup(STDOUT_FILENO), dup(STDERR_FILENO)};
    const int out = open(folder.Path("out").c_str(), O_WRONLY | O_CLOEXEC);
    SetStreams({open(folder.Path("in").c_str(), O_RDONLY | O_CLOEXEC), out, dup(out)});
    failures = c.failures;
    try {
      c.use();
    } catch (const settings::Error& failed) {
      error = failed.message;
    }
    SetStreams(before);
    EXPECT_TRUE(failures.empty());
    EXPECT_EQ(error, c.error);
    EXPECT_EQ(folder.Read("out"), c.written);
  }
}

}  // namespace
}  // namespace quarry::tool
