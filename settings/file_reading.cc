#include "settings/file_reading.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <stdexcept>

#include "settings/error.h"
#include "settings/path_walk.h"

namespace quarry::settings {

namespace {

// The size of the file and one byte more, so that the read that reaches the end needs no resize.
// Capped, for a sparse file may report a huge size.
std::size_t FirstReadSize(int descriptor) {
  constexpr std::size_t kMaxBytes = 64U << 20U;
  struct stat status {};
  const bool known = fstat(descriptor, &status) == 0 && status.st_size > 0;
  return known ? std::min(static_cast<std::size_t>(status.st_size) + 1, kMaxBytes) : 4096;
}

std::string ReadToEnd(int descriptor, const std::string& name) {
  std::string text;
  std::size_t used = 0;
  for (std::size_t more = FirstReadSize(descriptor);; more = text.size()) {  // doubles
    text.resize(used + more);
    std::size_t count = 0;
    if (!platform::ReadUpTo(descriptor, &text[used], more, &count)) {
      throw SystemError("read " + name, name, errno, errno == EISDIR ? "name the files in it" : "");
    }
    used += count;
    if (count < more) break;
  }
  text.resize(used);
  return text;
}

}  // namespace

std::string ReadFile(const std::string& file) {
  platform::FileDescriptor input(-1);
  OpenInput(file, &input);
  return ReadAll(input.get(), file);
}

void OpenInput(const std::string& file, platform::FileDescriptor* input) {
  RequireNoNul(file);
  input->Reset(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (input->get() == -1) throw SystemError("open " + file, file, errno);
}

std::string ReadAll(int descriptor, const std::string& name) {
  try {
    return ReadToEnd(descriptor, name);
  } catch (const std::bad_alloc&) {
    throw SystemError("read " + name, name, ENOMEM);
  } catch (const std::length_error&) {
    throw SystemError("read " + name, name, ENOMEM);
  }
}

}  // namespace quarry::settings
