#include "tools/terminal/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/local/file_descriptor.h"
#include "settings/file_reading.h"
#include "tools/terminal/errors.h"

namespace quarry::tool {

void ReserveStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest free number is this one. It is opened with the opposite access mode, so that
    // reading or writing it fails as it did while it was closed.
    const int opened = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    if (opened == -1) throw settings::SystemError("open /dev/null", "/dev/null", errno);
  }
}

void RequireName(const std::string& name) {
  if (!name.empty()) return;
  throw ToolError(kExitFailed, "the name of a file or folder is empty",
                  "is a variable of the command line not set?");
}

std::string InputName(const std::string& file) { return file == "-" ? "<stdin>" : file; }

std::string ReadInput(const std::string& file) {
  RequireName(file);
  return file == "-" ? settings::ReadAll(STDIN_FILENO, InputName(file)) : settings::ReadFile(file);
}

void WriteStandardOutput(const std::string& text) {
  if (!platform::WriteAll(STDOUT_FILENO, text.data(), text.size())) {
    throw settings::SystemError("write standard output", "", errno);
  }
  // Some file systems report only now that there was no room.
  if (close(STDOUT_FILENO) == -1 && errno != EINTR) {
    throw settings::SystemError("write standard output", "", errno);
  }
}

}  // namespace quarry::tool
