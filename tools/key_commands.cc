// keygen and seal.

#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <string_view>

#include "platform/local/file_descriptor.h"
#include "platform/local/sealed_password.h"
#include "tools/agent_settings.h"
#include "tools/commands.h"
#include "tools/display.h"
#include "tools/errors.h"
#include "tools/file_edit.h"
#include "tools/files.h"
#include "tools/secrets.h"

namespace quarry::tool {

using platform::kLongestPassword;
using platform::kSealedPrefix;
using platform::SealingKey;
using platform::SecretBytes;

namespace {

std::string KeyFileIn(const std::string& folder) {
  return folder + (folder.empty() || folder.back() != '/' ? "/" : "") + "auth.key";
}

[[noreturn]] void Refuse(const std::string& message, const std::string& hint) {
  throw ToolError(kExitNo, ErrorReport(message, hint));
}

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGALRM};

// The terminal as it was, for the handler of signals.
termios terminal_before;

void RestoreTerminal() { (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &terminal_before); }

void RestoreTerminalAndEnd(int signal_number) {
  RestoreTerminal();
  (void)std::signal(signal_number, SIG_DFL);
  (void)std::raise(signal_number);
}

// Switches the echo of the terminal on standard input off during its life, also
// when a signal ends the program meanwhile.
class SilentTerminal {
 public:
  SilentTerminal() {
    if (tcgetattr(STDIN_FILENO, &terminal_before) != 0) {
      throw SystemError("use", "the terminal", errno);
    }
    for (const int number : kEndingSignals) {
      (void)std::signal(number, RestoreTerminalAndEnd);
    }
    (void)std::signal(SIGTSTP, SIG_IGN);  // a shell would find it silent
    termios silent = terminal_before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    if (tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent) != 0) {
      throw SystemError("use", "the terminal", errno);
    }
  }
  ~SilentTerminal() {
    RestoreTerminal();
    for (const int number : kEndingSignals) {
      (void)std::signal(number, SIG_DFL);
    }
    (void)std::signal(SIGTSTP, SIG_DFL);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;
};

// Room for the longest password, a line feed and one byte that is too many.
class PasswordInput {
 public:
  PasswordInput() : bytes_(kLongestPassword + 2) {
    if (bytes_.data() == nullptr) throw std::bad_alloc();
  }

  // The whole of standard input, or one line of a terminal. What is too much is
  // read and dropped, or the next reader would take it.
  void Read(bool line_only) {
    size_ = 0;
    char* const last = bytes_.text() + bytes_.size() - 1;
    for (bool line_ended = false; !line_ended;) {
      char* const place = std::min(bytes_.text() + size_, last);
      const auto room = static_cast<std::size_t>(last + 1 - place);
      const ssize_t count = read(STDIN_FILENO, place, room);
      if (count == -1 && errno == EINTR) continue;
      if (count == -1) throw SystemError("read", "standard input", errno);
      if (count == 0) break;
      line_ended = line_only && place[count - 1] == '\n';
      size_ = static_cast<std::size_t>(place + count - bytes_.text());
    }
  }

  bool empty() const { return size_ == 0; }

  // Without the line feed at its end.
  std::string_view password() {
    std::string_view text(bytes_.text(), size_);
    if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
    return text;
  }

 private:
  SecretBytes bytes_;
  std::size_t size_ = 0;
};

void DemandPassword(PasswordInput* input) {
  if (input->empty()) {
    Refuse("there is no password on standard input", "an empty password is a line feed alone");
  }
  const std::string_view password = input->password();
  if (password.size() > kLongestPassword) {
    Refuse("the password is longer than " + std::to_string(kLongestPassword) + " bytes",
           "an agent cannot take it");
  }
  if (password.find_first_of(std::string_view("\0\n", 2)) != std::string_view::npos) {
    Refuse("the password holds a line feed or a NUL byte",
           "give one line; a single line feed at its end does not count");
  }
  if (password.substr(0, kSealedPrefix.size()) == kSealedPrefix) {
    Refuse("the password is sealed already", "give the plain one, or store this one as it is");
  }
}

void ReadTwiceFromTerminal(const std::string& folder, PasswordInput* input) {
  const SilentTerminal silent;
  WriteStandardError("Password to seal for " + Shown(KeyFileIn(folder)) + ": ");
  input->Read(true);
  WriteStandardError("\n");
  DemandPassword(input);
  WriteStandardError("The same again: ");
  PasswordInput again;
  again.Read(true);
  WriteStandardError("\n");
  if (input->password() != again.password()) {
    Refuse("the two passwords differ", "nothing was sealed; try again");
  }
}

void LoadKey(const std::string& folder, SealingKey* key) {
  DemandName(folder);
  const std::string file = KeyFileIn(folder);
  errno = 0;
  switch (key->Load(file.c_str())) {
    case kDecryptDone:
      return;
    case kDecryptNoKeyFile:
      throw SystemError(
          "read", "the key file " + Shown(file), errno,
          errno == ENOENT ? "make one: quarry-config keygen " + ShellQuotedFile(folder) : "");
    case kDecryptKeyTooOpen:
      Refuse("key file " + Quoted(file) + " is open to others", OpenKeyHint(file));
    case kDecryptNotAKeyFile:
      Refuse(Quoted(file) + " is not a key file",
             "make one in another folder: quarry-config keygen FOLDER");
    default:
      throw std::bad_alloc();
  }
}

// Only the owner may write to it.
void DemandPrivateFolder(const std::string& folder) {
  DemandName(folder);
  struct stat status {};
  if (stat(folder.c_str(), &status) != 0) {
    throw SystemError("open", Shown(folder), errno,
                      errno == ENOENT ? "make it: mkdir -m 700 " + ShellQuotedFile(folder) : "");
  }
  if ((status.st_mode & (S_IWGRP | S_IWOTH)) == 0) return;
  throw ToolError(kExitFailed, ErrorReport("others may write to the folder " + Quoted(folder),
                                           "a key there could be exchanged: chmod go-w " +
                                               ShellQuotedFile(folder)));
}

}  // namespace

int RunKeygen(const KeyRequest& request) {
  ForbidCoreDumps();
  DemandPrivateFolder(request.folder);
  const std::string file = KeyFileIn(request.folder);
  FileEdit edit(file, kPrivateMode);
  if (edit.exists()) {
    throw ToolError(kExitFailed, ErrorReport("there is a key already: " + Shown(file),
                                             "passwords may be sealed with it; make the new one in "
                                             "another folder"));
  }
  SealingKey key;
  SecretBytes text(platform::kKeyFileBytes + 1);
  if (text.data() == nullptr || key.Randomise() != kDecryptDone) {
    throw std::bad_alloc();
  }
  EncodeKey(key, &text);
  edit.Replace({text.text(), platform::kKeyFileBytes});
  WriteStandardError("quarry-config: the key is in " + Shown(file) +
                     "; only its owner can read it\n");
  return kExitDone;
}

int RunSeal(const KeyRequest& request) {
  ForbidCoreDumps();
  SealingKey key;
  LoadKey(request.folder, &key);
  PasswordInput input;
  if (isatty(STDIN_FILENO) == 1) {
    ReadTwiceFromTerminal(request.folder, &input);
  } else {
    input.Read(false);
    DemandPassword(&input);
  }
  std::string stored;
  if (platform::SealPassword(key, input.password(), &stored) != kDecryptDone) {
    throw std::bad_alloc();
  }
  WriteStandardOutput(stored + '\n');
  return kExitDone;
}

}  // namespace quarry::tool
