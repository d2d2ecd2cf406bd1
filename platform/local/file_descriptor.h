// An owning file descriptor, and complete reads and writes, for the stand-ins and the tool. Not
// installed.
#ifndef QUARRY_PLATFORM_LOCAL_FILE_DESCRIPTOR_H_
#define QUARRY_PLATFORM_LOCAL_FILE_DESCRIPTOR_H_

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace quarry::platform {

// Owns a descriptor and closes it; -1 means none.
class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  ~FileDescriptor() { Close(); }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  int get() const { return descriptor_; }

  // Closes the descriptor and takes ownership of another one.
  void Reset(int descriptor) {
    Close();
    descriptor_ = descriptor;
  }

  // Closes the descriptor. Returns false, with errno set, when the system reports that data was
  // lost.
  bool Close() {
    if (descriptor_ == -1) return true;
    const bool closed = close(descriptor_) == 0 || errno == EINTR;
    descriptor_ = -1;
    return closed;
  }

 private:
  int descriptor_;
};

// Whether to retry a read or write that failed with the current errno. On a descriptor that another
// program made non-blocking, first waits for one of `events`, as poll defines them.
inline bool ShouldRetry(int descriptor, short events) {
  if (errno == EINTR) return true;
  if (errno != EAGAIN) return false;
  pollfd ready = {descriptor, events, 0};
  return poll(&ready, 1, -1) >= 0 || errno == EINTR;
}

// Reads `capacity` bytes, fewer only at end of file, and sets `*size` to their number. Returns
// false, with errno set, on failure.
inline bool ReadUpTo(int descriptor, char* bytes, std::size_t capacity, std::size_t* size) {
  *size = 0;
  while (*size < capacity) {
    const ssize_t count = read(descriptor, bytes + *size, capacity - *size);
    if (count == 0) break;
    if (count > 0) {
      *size += static_cast<std::size_t>(count);
    } else if (!ShouldRetry(descriptor, POLLIN)) {
      return false;
    }
  }
  return true;
}

// Writes `size` bytes. Returns false, with errno set, on failure.
inline bool WriteAll(int descriptor, const char* bytes, std::size_t size) {
  for (std::size_t written = 0; written < size;) {
    const ssize_t count = write(descriptor, bytes + written, size - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (!ShouldRetry(descriptor, POLLOUT)) {
      return false;
    }
  }
  return true;
}

}  // namespace quarry::platform

#endif  // QUARRY_PLATFORM_LOCAL_FILE_DESCRIPTOR_H_
