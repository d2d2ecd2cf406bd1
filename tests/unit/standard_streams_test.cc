#include "tools/terminal/standard_streams.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <tuple>
#include <vector>

#include "settings/error.h"
#include "tests/support/failing_calls.h"
#include "tests/support/support.h"
#include "tools/terminal/editor.h"
#include "tools/terminal/errors.h"
#include "tools/terminal/password_prompt.h"

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
  // What is used, what fails, the message and the output.
  using FailingCalls = std::vector<FailingCall>;
  const std::tuple<std::function<void()>, FailingCalls, const char*, const char*> cases[] = {
      {input, {{"read", EINTR}, {"read", EAGAIN}, {"poll", EINTR}}, "", ""},
      {input, {{"read", EIO}}, "cannot read <stdin>: Input/output error", ""},
      {input, {{"read", EAGAIN}, {"poll", EIO}}, "cannot read <stdin>: Input/output error", ""},
      {output, {{"write", EINTR}, {"write", EAGAIN}, {"close", EINTR}}, "", "text\n"},
      {output, {{"write", EIO}}, "cannot write standard output: Input/output error", ""},
      {output, {{"close", EIO}}, "cannot write standard output: Input/output error", "text\n"},
      {message, {{"write", EINTR}, {"write", EAGAIN}}, "", "text\n"},
      {password, {{"read", EINTR}, {"read", EAGAIN}, {"poll", EINTR}}, "", ""},
      {password, {{"read", EIO}}, "cannot read standard input: Input/output error", ""},
      {edit, {{"waitpid", EINTR}}, "", ""},
  };
  for (const auto& [use, failures, error, written] : cases) {
    SCOPED_TRACE(failures.front().name + std::to_string(failures.front().error));
    folder.Write("out", "");
    std::string reported;
    const std::array<int, 3> before = {dup(STDIN_FILENO), dup(STDOUT_FILENO), dup(STDERR_FILENO)};
    const int out = open(folder.Path("out").c_str(), O_WRONLY | O_CLOEXEC);
    SetStreams({open(folder.Path("in").c_str(), O_RDONLY | O_CLOEXEC), out, dup(out)});
    failing_calls = failures;
    try {
      use();
    } catch (const settings::Error& failed) {
      reported = failed.message;
    }
    SetStreams(before);
    EXPECT_TRUE(failing_calls.empty());
    EXPECT_EQ(reported, error);
    EXPECT_EQ(folder.Read("out"), written);
  }
}

}  // namespace
}  // namespace quarry::tool
