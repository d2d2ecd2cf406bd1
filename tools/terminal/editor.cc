#include "tools/terminal/editor.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/local/file_descriptor.h"
#include "settings/file_reading.h"
#include "tools/terminal/errors.h"
#include "tools/terminal/signal_block.h"

namespace quarry::tool {

namespace {

std::string EditorCommand() {
  for (const char* variable : {"VISUAL", "EDITOR"}) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
    const char* const command = std::getenv(variable);
    if (command == nullptr) continue;
    std::string words = command;
    if (words.find_first_not_of(" \t") != std::string::npos) return words;
  }
  return "vi";
}

// Ignores, while an editor runs, the signals of the keys that end a program: in an editor these
// keys mean something else.
class ScopedInterruptIgnorer {
 public:
  ScopedInterruptIgnorer() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    (void)sigaction(SIGINT, &ignore, &interrupt_before_);
    (void)sigaction(SIGQUIT, &ignore, &quit_before_);
  }
  ~ScopedInterruptIgnorer() {
    (void)sigaction(SIGINT, &interrupt_before_, nullptr);
    (void)sigaction(SIGQUIT, &quit_before_, nullptr);
  }
  ScopedInterruptIgnorer(const ScopedInterruptIgnorer&) = delete;
  ScopedInterruptIgnorer& operator=(const ScopedInterruptIgnorer&) = delete;

 private:
  struct sigaction interrupt_before_ {
  }, quit_before_{};
};

// What this program blocks or ignores while an editor runs, the editor gets as this program got it.
struct EditorSignals {
  sigset_t blocked;
  sigset_t not_ignored;
};

// Of the signals that are ignored while an editor runs, those that are not ignored now.
sigset_t FindNotIgnored() {
  sigset_t found;
  sigemptyset(&found);
  for (const int number : {SIGINT, SIGQUIT, SIGXFSZ}) {
    struct sigaction now {};
    (void)sigaction(number, nullptr, &now);
    if (now.sa_handler != SIG_IGN) sigaddset(&found, number);
  }
  return found;
}

// Starts `command`, which a shell splits into words, with the path as its argument. Returns an
// errno value.
int Spawn(const std::string& command, const std::string& path, const EditorSignals& signals,
          pid_t* child) {
  posix_spawnattr_t attributes;
  if (const int error = posix_spawnattr_init(&attributes)) return error;
  posix_spawnattr_setsigdefault(&attributes, &signals.not_ignored);
  posix_spawnattr_setsigmask(&attributes, &signals.blocked);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  std::string words[] = {"sh", "-c", command + " \"$@\"", command, path};
  char* arguments[] = {words[0].data(), words[1].data(), words[2].data(),
                       words[3].data(), words[4].data(), nullptr};
  const int error = posix_spawn(child, "/bin/sh", nullptr, &attributes, arguments, environ);
  posix_spawnattr_destroy(&attributes);
  return error;
}

// Whether a signal is pending that ends this process once it is unblocked.
bool IsTerminationPending() {
  sigset_t waiting;
  sigemptyset(&waiting);
  (void)sigpending(&waiting);
  return sigismember(&waiting, SIGTERM) == 1 || sigismember(&waiting, SIGHUP) == 1;
}

}  // namespace

EditorCopy::EditorCopy(const std::string& name, const std::string& text)
    : folder_("/tmp/quarry-config-XXXXXX") {
  if (mkdtemp(folder_.data()) == nullptr) {
    throw settings::SystemError("make a folder in /tmp", "/tmp", errno);
  }
  path_ = folder_ + '/' + name;
  platform::FileDescriptor file(
      open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (file.get() != -1 && platform::WriteAll(file.get(), text.data(), text.size()) &&
      file.Close()) {
    return;
  }
  const int error = errno;
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
  throw settings::SystemError("write " + path_, path_, error);
}

bool EditorCopy::Edit() const {
  const sigset_t not_ignored = FindNotIgnored();
  const ScopedInterruptIgnorer ignored;
  const ScopedSignalBlock blocked;
  pid_t child = 0;
  const int error = Spawn(EditorCommand(), path_, {blocked.before(), not_ignored}, &child);
  if (error != 0) throw settings::SystemError("run /bin/sh", "/bin/sh", error);
  int status = 0;
  while (waitpid(child, &status, 0) == -1) {
    if (errno != EINTR) throw settings::SystemError("wait for the editor", "", errno);
  }
  if (IsTerminationPending()) {
    WriteDiagnostics(
        {Message("ended by a signal; nothing was saved", "the edited text is kept in " + path_)});
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string EditorCopy::Read() const { return settings::ReadFile(path_); }

void EditorCopy::Discard() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
  discarded_ = true;
}

}  // namespace quarry::tool
