// What the configuration library uses of the storage system's core runtime: statuses, the exception
// that carries them, and the decryption of stored passwords. libquarry_platform.so contains local
// stand-ins; a storage system's own library may replace it (docs/platform.md).
#ifndef QUARRY_PLATFORM_CR_RUNTIME_H_
#define QUARRY_PLATFORM_CR_RUNTIME_H_

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <sstream>

#include "export.h"

// A status of the core runtime; 0 is success.
using cr_status_t = std::int32_t;

// Carries a status, a message and optionally a detail text. Copying never throws; the texts live as
// long as any copy does. Separate copies may be used by separate threads.
class QUARRY_EXPORT Cr_ErrnoException : public std::exception {
 public:
  // The texts are copied; each may be null. Throws std::bad_alloc.
  Cr_ErrnoException(cr_status_t status, const char* message, const char* detail);
  // The message is the contents of the stream.
  Cr_ErrnoException(cr_status_t status, const std::stringstream& message, const char* detail);
  // Shares the other's texts.
  Cr_ErrnoException(const Cr_ErrnoException& other) noexcept;
  // Releases its own texts and shares the other's.
  Cr_ErrnoException& operator=(const Cr_ErrnoException& other) noexcept;
  ~Cr_ErrnoException() override;

  // The status passed to the constructor.
  cr_status_t status() const noexcept;
  const char* message() const noexcept;  // null when none was given
  const char* detail() const noexcept;   // null when none was given

  // Message and detail as one text: "MESSAGE: DETAIL".
  const char* what() const noexcept override;

 private:
  struct Texts;
  cr_status_t status_;
  std::shared_ptr<const Texts> texts_;
};

extern "C" {

// Returns the text of a status, NUL-terminated; every number has one. The caller must not free it;
// it is valid for the life of the process. Any thread may call.
QUARRY_EXPORT const char* CRStatusToStringA(cr_status_t status);

// Decrypts a stored password with the key in `key_file`. On success writes the password and a NUL
// to `out`, which has room for `capacity` bytes, and returns 0. Any other result is a failure and
// leaves `out` unchanged. The stand-in returns a DecryptResult. Any number of threads may call at
// once.
QUARRY_EXPORT int DecryptPasswdWithKey(const char* key_file, const char* stored, char* out,
                                       std::size_t capacity);

}  // extern "C"

// What the stand-in's DecryptPasswdWithKey returns. Another platform library may use other numbers
// for its failures.
enum DecryptResult : int {
  kDecryptDone = 0,         // the password is in the caller's buffer
  kDecryptBadArgument = 1,  // a null pointer or no capacity
  kDecryptNoKeyFile = 2,    // the key file cannot be read
  kDecryptKeyTooOpen = 3,   // other users may read the key file, or one of them owns it
  kDecryptNotAKeyFile = 4,  // not a regular file, or not in the form of a key file
  kDecryptNotSealed = 5,    // not a stored password of a known version
  kDecryptOtherKey = 6,     // sealed with another key
  kDecryptDamaged = 7,      // changed since it was sealed
  kDecryptTooLong = 8,      // does not fit the capacity
  kDecryptNoCrypto = 9,     // libsodium cannot be initialized or has no memory
};

// The status of exceptions that the configuration library throws when the agent's file, or a
// setting in it, cannot be used.
inline constexpr cr_status_t kCrConfigFailure = 4;
// The status of the exception thrown when the metabase service library no longer exists.
inline constexpr cr_status_t kCrExpired = 9;

#endif  // QUARRY_PLATFORM_CR_RUNTIME_H_
