#include "dmconfig/unbuffered_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace quarry::storage::dmconfig {

UnbufferedFile::UnbufferedFile(const std::string& path)
    : file_(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {}

UnbufferedFile::~UnbufferedFile() {
  if (is_open()) close(file_);
}

std::streamsize UnbufferedFile::xsputn(const char* text, std::streamsize size) {
  std::streamsize written = 0;
  while (written < size) {
    const ssize_t count = write(file_, text + written, static_cast<std::size_t>(size - written));
    if (count == -1 && errno == EINTR) continue;
    if (count == -1) break;
    written += count;
  }
  return written;
}

}  // namespace quarry::storage::dmconfig
