#include "tools/terminal/password_prompt.h"

#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <new>

#include "platform/local/file_descriptor.h"
#include "platform/local/sealed_password.h"
#include "tools/terminal/errors.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using platform::kLongestPassword;
using platform::kSealedPrefix;

namespace {

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGALRM};

// The terminal as it was, for the handler of signals.
termios terminal_before;

void RestoreTerminal() { (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &terminal_before); }

void RestoreTerminalAndEnd(int signal_number) {
  RestoreTerminal();
  (void)std::signal(signal_number, SIG_DFL);
  (void)std::raise(signal_number);
}

// Switches off the echo of the terminal on standard input for the object's lifetime. A signal that
// ends the program switches it on again, too.
class ScopedNoEcho {
 public:
  ScopedNoEcho() {
    if (tcgetattr(STDIN_FILENO, &terminal_before) != 0) {
      throw settings::SystemError("use the terminal", "", errno);
    }
    for (const int number : kEndingSignals) {
      (void)std::signal(number, RestoreTerminalAndEnd);
    }
    (void)std::signal(SIGTSTP, SIG_IGN);  // the shell would be left without echo
    termios silent = terminal_before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    if (tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent) != 0) {
      throw settings::SystemError("use the terminal", "", errno);
    }
  }
  ~ScopedNoEcho() {
    RestoreTerminal();
    for (const int number : kEndingSignals) {
      (void)std::signal(number, SIG_DFL);
    }
    (void)std::signal(SIGTSTP, SIG_DFL);
  }
  ScopedNoEcho(const ScopedNoEcho&) = delete;
  ScopedNoEcho& operator=(const ScopedNoEcho&) = delete;
};

}  // namespace

// Room for the longest password, a line feed and one byte that is too many.
PasswordInput::PasswordInput() : bytes_(kLongestPassword + 2) {
  if (bytes_.data() == nullptr) throw std::bad_alloc();
}

void PasswordInput::Read(const std::string& purpose) {
  if (isatty(STDIN_FILENO) == 1) return ReadTwice(purpose);
  ReadBytes(false);
  RequireSealable();
}

void PasswordInput::ReadTwice(const std::string& purpose) {
  const ScopedNoEcho no_echo;
  WriteStandardError("Password " + EscapeForTerminal(purpose) + ": ");
  ReadBytes(true);
  WriteStandardError("\n");
  RequireSealable();
  WriteStandardError("Repeat the password: ");
  PasswordInput again;
  again.ReadBytes(true);
  WriteStandardError("\n");
  if (password() != again.password()) {
    throw ToolError(kExitNo, "the two passwords differ", "nothing was sealed; try again");
  }
}

// Whatever is too much is read and dropped, or the next reader would get it.
void PasswordInput::ReadBytes(bool line_only) {
  size_ = 0;
  char* const last = bytes_.text() + bytes_.size() - 1;
  for (bool line_ended = false; !line_ended;) {
    char* const place = std::min(bytes_.text() + size_, last);
    const auto room = static_cast<std::size_t>(last + 1 - place);
    const ssize_t count = read(STDIN_FILENO, place, room);
    if (count == -1 && platform::ShouldRetry(STDIN_FILENO, POLLIN)) continue;
    if (count == -1) throw settings::SystemError("read standard input", "", errno);
    if (count == 0) break;
    line_ended = line_only && place[count - 1] == '\n';
    size_ = static_cast<std::size_t>(place + count - bytes_.text());
  }
}

std::string_view PasswordInput::password() const {
  std::string_view text(reinterpret_cast<const char*>(bytes_.data()), size_);
  if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
  return text;
}

void PasswordInput::RequireSealable() const {
  if (size_ == 0) {
    throw ToolError(kExitNo, "there is no password on standard input",
                    "an empty password is a line feed alone");
  }
  const std::string_view text = password();
  if (text.size() > kLongestPassword) {
    throw ToolError(kExitNo,
                    "the password is longer than " + std::to_string(kLongestPassword) + " bytes",
                    "an agent cannot use a longer one");
  }
  if (text.find_first_of(std::string_view("\0\n", 2)) != std::string_view::npos) {
    throw ToolError(kExitNo, "the password holds a line feed or a NUL byte",
                    "give one line; a single line feed at its end does not count");
  }
  if (text.substr(0, kSealedPrefix.size()) == kSealedPrefix) {
    throw ToolError(kExitNo, "the password is sealed already",
                    "give the plain one, or store this one as it is");
  }
}

}  // namespace quarry::tool
