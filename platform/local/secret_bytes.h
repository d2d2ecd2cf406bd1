// Memory for keys and passwords. Not installed.
#ifndef QUARRY_PLATFORM_LOCAL_SECRET_BYTES_H_
#define QUARRY_PLATFORM_LOCAL_SECRET_BYTES_H_

#include <cstddef>

namespace quarry::platform {

// A buffer from sodium_malloc: between guard pages, locked against swapping where the system allows
// it, and wiped when it is destroyed. Nothing throws; any thread may construct one.
class SecretBytes {
 public:
  explicit SecretBytes(std::size_t size);  // on failure data() is null
  ~SecretBytes();
  SecretBytes(const SecretBytes&) = delete;
  SecretBytes& operator=(const SecretBytes&) = delete;

  unsigned char* data() { return data_; }
  const unsigned char* data() const { return data_; }
  char* text() { return reinterpret_cast<char*>(data_); }
  std::size_t size() const { return size_; }

 private:
  unsigned char* const data_;
  const std::size_t size_;
};

}  // namespace quarry::platform

#endif  // QUARRY_PLATFORM_LOCAL_SECRET_BYTES_H_
