#include "tools/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <stdexcept>
#include <utility>

#include "platform/local/file_descriptor.h"
#include "tools/display.h"
#include "tools/errors.h"

namespace quarry::tool {

namespace {

// Room for the file and one byte more, so that the read that finds the end
// needs no growth. No more than a size that any machine has, for what is said
// to be larger may be sparse or a mistake.
std::size_t FirstReadSize(int descriptor) {
  constexpr std::size_t kLargest = 64U << 20U;
  struct stat status {};
  const bool known = fstat(descriptor, &status) == 0 && status.st_size > 0;
  return known ? std::min(static_cast<std::size_t>(status.st_size) + 1, kLargest) : 4096;
}

std::string ReadToEnd(int descriptor, const std::string& name) {
  std::string text;
  std::size_t used = 0;
  for (std::size_t more = FirstReadSize(descriptor);; more = text.size()) {  // doubles
    text.resize(used + more);
    std::size_t count = 0;
    if (!platform::ReadUpTo(descriptor, &text[used], more, &count)) {
      throw SystemError("read", name, errno, errno == EISDIR ? "give the files in it" : "");
    }
    used += count;
    if (count < more) break;
  }
  text.resize(used);
  return text;
}

}  // namespace

void ReserveStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest free number is this one. Opened the wrong way round, so that
    // to read or to write it is an error as it was when it was closed.
    const int opened = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    if (opened == -1) throw SystemError("open", "/dev/null", errno);
  }
}

void DemandName(const std::string& name) {
  if (!name.empty()) return;
  throw ToolError(kExitFailed, ErrorReport("the name of a file or folder is empty",
                                           "is a variable of the command line not set?"));
}

std::string DisplayName(const std::string& file) { return file == "-" ? "<stdin>" : Shown(file); }

std::string ReadAll(int descriptor, const std::string& name) {
  try {
    return ReadToEnd(descriptor, name);
  } catch (const std::bad_alloc&) {
    throw SystemError("read", name, ENOMEM);
  } catch (const std::length_error&) {
    throw SystemError("read", name, ENOMEM);
  }
}

std::string ReadInput(const std::string& file) {
  auto text = ReadIfPresent(file);
  if (!text) throw SystemError("open", DisplayName(file), ENOENT);
  return *std::move(text);
}

std::optional<std::string> ReadIfPresent(const std::string& file) {
  DemandName(file);
  const std::string name = DisplayName(file);
  if (file == "-") return ReadAll(STDIN_FILENO, name);
  const platform::FileDescriptor input(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (input.get() != -1) return ReadAll(input.get(), name);
  if (errno == ENOENT) return std::nullopt;
  throw SystemError("open", name, errno);
}

void WriteStandardOutput(const std::string& text) {
  if (!platform::WriteAll(STDOUT_FILENO, text.data(), text.size())) {
    throw SystemError("write", "standard output", errno);
  }
  // Some file systems tell only now that there was no room.
  if (close(STDOUT_FILENO) == -1 && errno != EINTR) {
    throw SystemError("write", "standard output", errno);
  }
}

}  // namespace quarry::tool
