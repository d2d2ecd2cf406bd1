// The key that passwords are sealed with, and the format of the file "auth.key" that stores it. Not
// installed.
//
// A key file is one line of text: "quarry-config-key:v1:", 32 random bytes as 43 characters of
// base64url, a line feed.
//
// Nothing here throws. Any number of threads may call at once.
#ifndef QUARRY_PLATFORM_LOCAL_KEY_FILE_H_
#define QUARRY_PLATFORM_LOCAL_KEY_FILE_H_

#include <cstddef>

#include "platform/cr_runtime.h"
#include "platform/local/secret_bytes.h"

namespace quarry::platform {

// A key of 32 bytes, in guarded memory.
class SealingKey {
 public:
  SealingKey();

  // Reads a key file. Follows symbolic links; does not wait for a pipe. Returns kDecryptDone,
  // kDecryptNoKeyFile (errno says why), kDecryptNotAKeyFile, kDecryptNoCrypto, or
  // kDecryptKeyTooOpen: see CheckKeyPermissions in key_permissions.h.
  DecryptResult Load(const char* key_file);

  // Set the key to a copy of the 32 bytes at `bytes`, or to random bytes. Both return kDecryptDone
  // or kDecryptNoCrypto.
  DecryptResult Set(const unsigned char* bytes);
  DecryptResult Randomise();

  const unsigned char* bytes() const { return bytes_.data(); }

 private:
  SecretBytes bytes_;
};

// The size of a key file, in bytes.
inline constexpr std::size_t kKeyFileBytes = 65;

// Writes the text of the key's file and a NUL to `*text`, which must have room for
// kKeyFileBytes + 1 bytes.
void EncodeKey(const SealingKey& key, SecretBytes* text);

}  // namespace quarry::platform

#endif  // QUARRY_PLATFORM_LOCAL_KEY_FILE_H_
