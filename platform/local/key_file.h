// Key files: the key that passwords are sealed with, as "auth.key" stores it. Not installed.
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

// The 32 bytes of a key.
class SealingKey {
 public:
  SealingKey();

  // Reads a key file. Follows links; does not wait for a pipe. Returns kDecryptDone,
  // kDecryptNoKeyFile (errno says why), kDecryptNotAKeyFile, kDecryptNoCrypto, or
  // kDecryptKeyTooOpen: the file must belong to the caller or to root (to anybody when the caller
  // is root), and nobody else may read or write it. The one exception is a secret mounted for a
  // service: owned by root, readable by the group, which is the caller's.
  DecryptResult Load(const char* key_file);

  // Sets the key to 32 given bytes, or to random ones. Returns kDecryptDone or kDecryptNoCrypto.
  DecryptResult Set(const unsigned char* bytes);
  DecryptResult Randomise();

  const unsigned char* bytes() const { return bytes_.data(); }

 private:
  SecretBytes bytes_;
};

// Writes the text of the key's file, kKeyFileBytes long and followed by a NUL, to `*text`.
inline constexpr std::size_t kKeyFileBytes = 65;
void EncodeKey(const SealingKey& key, SecretBytes* text);

}  // namespace quarry::platform

#endif  // QUARRY_PLATFORM_LOCAL_KEY_FILE_H_
