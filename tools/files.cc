#include "tools/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "tools/display.h"
#include "tools/errors.h"

namespace quarry::tool {

namespace {

// An open file descriptor, closed at the end unless it is standard input.
class InputDescriptor {
 public:
  explicit InputDescriptor(const std::string& file)
      : descriptor_(file == "-" ? STDIN_FILENO
                                : open(file.c_str(), O_RDONLY | O_CLOEXEC)) {}
  ~InputDescriptor() {
    if (descriptor_ > STDERR_FILENO) close(descriptor_);
  }
  InputDescriptor(const InputDescriptor&) = delete;
  InputDescriptor& operator=(const InputDescriptor&) = delete;

  int get() const { return descriptor_; }

 private:
  const int descriptor_;
};

// How much to ask for first: the size of a file, else a page.
std::size_t FirstReadSize(int descriptor) {
  struct stat status {};
  const bool known = fstat(descriptor, &status) == 0 && status.st_size > 0;
  // One byte more, so that the read that finds the end needs no growth.
  return known ? static_cast<std::size_t>(status.st_size) + 1 : 4096;
}

}  // namespace

void ReserveStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest free number is this one. Opened the wrong way round, so that
    // to read or to write it is an error as it was when it was closed.
    const int opened =
        open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    if (opened == -1) throw SystemError("open", "/dev/null", errno);
  }
}

std::string DisplayName(const std::string& file) {
  return file == "-" ? "<stdin>" : Shown(file);
}

std::string ReadInput(const std::string& file) {
  const InputDescriptor input(file);
  if (input.get() == -1) throw SystemError("open", DisplayName(file), errno);

  std::string text(FirstReadSize(input.get()), '\0');
  std::size_t used = 0;
  for (;;) {
    const ssize_t got = read(input.get(), &text[used], text.size() - used);
    if (got == -1 && errno == EINTR) continue;
    if (got == -1) throw SystemError("read", DisplayName(file), errno);
    if (got == 0) break;
    used += static_cast<std::size_t>(got);
    if (used == text.size()) text.resize(text.size() * 2);
  }
  text.resize(used);
  return text;
}

void WriteStandardOutput(const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count =
        write(STDOUT_FILENO, &text[written], text.size() - written);
    if (count == -1 && errno == EINTR) continue;
    if (count == -1) throw SystemError("write", "standard output", errno);
    written += static_cast<std::size_t>(count);
  }
  // Some file systems tell only now that there was no room.
  if (close(STDOUT_FILENO) == -1 && errno != EINTR) {
    throw SystemError("write", "standard output", errno);
  }
}

}  // namespace quarry::tool
