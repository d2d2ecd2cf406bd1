// Memory for keys and passwords. Not installed.
#ifndef QUARRY_PLATFORM_LOCAL_SECRET_BYTES_H_
#define QUARRY_PLATFORM_LOCAL_SECRET_BYTES_H_

#include <cstddef>

// A function that handles a key clears all registers when it returns, because a caller or the
// system may save them in memory, as the dynamic linker does at the first call of a function. In
// front of such a function's definition; compilers that cannot do it ignore it.
#if __has_attribute(zero_call_used_regs)
#define QUARRY_CLEARS_REGISTERS __attribute__((zero_call_used_regs("all")))
#else
#define QUARRY_CLEARS_REGISTERS
#endif

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
