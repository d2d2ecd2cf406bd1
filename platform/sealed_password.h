// Passwords sealed with a key: how the local stand-in stores them. Not
// installed; DecryptPasswdWithKey and the quarry-config program share it.
//
// The key file "auth.key" is one line of text: "quarry-config-key:v1:", 32
// random bytes as 43 characters of base64url, a line feed. A stored password is
// "sealed:v1:" and in base64url
//
//   key id      4 bytes: the first of BLAKE2b-128, keyed with the key, over
//               "quarry-config key id"; tells another key from damage
//   nonce      24 bytes, random
//   ciphertext  the password padded to a multiple of 64 bytes, so that its
//               length does not show
//   tag        16 bytes
//
// of XChaCha20-Poly1305 (IETF), with "sealed:v1:" and the key id as associated
// data, so that neither can be exchanged. Keys and passwords lie in memory that
// libsodium guards, keeps out of swap and wipes.
//
// Nothing here throws, but for SealPassword (std::bad_alloc). Any number of
// threads may call at once.
#ifndef QUARRY_PLATFORM_SEALED_PASSWORD_H_
#define QUARRY_PLATFORM_SEALED_PASSWORD_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/cr_runtime.h"

namespace quarry::platform {

// The longest password in bytes, so that it fits the agent's capacity of 255.
inline constexpr std::size_t kLongestPassword = 254;

inline constexpr std::string_view kSealedPrefix = "sealed:v1:";

// Guarded memory for a secret; wiped and freed at the end of its life.
class SecretBytes {
 public:
  explicit SecretBytes(std::size_t size);  // data() is null when there is none
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

// The 32 bytes of a key.
class SealingKey {
 public:
  SealingKey();

  // Reads a key file; links are followed, a pipe is not waited for. Returns
  // kDecryptDone, kDecryptNoKeyFile (errno tells why), kDecryptNotAKeyFile,
  // kDecryptNoCrypto, or kDecryptKeyTooOpen: it must belong to the caller or to
  // root (to anybody when the caller is root), and nobody else may read or
  // write it. The one exception is a secret mounted for a service: owned by
  // root, its group the caller's, readable by the group.
  DecryptResult Load(const char* key_file);

  // A key from 32 given bytes, or a random one. kDecryptDone or
  // kDecryptNoCrypto.
  DecryptResult Set(const unsigned char* bytes);
  DecryptResult Randomise();

  const unsigned char* bytes() const { return bytes_.data(); }

 private:
  SecretBytes bytes_;
};

// The text of the key's file, kKeyFileBytes long, and a NUL behind it.
inline constexpr std::size_t kKeyFileBytes = 65;
void EncodeKey(const SealingKey& key, SecretBytes* text);

// Stores in `*stored` the sealed form of the password: at most kLongestPassword
// bytes without NUL or line feed. kDecryptDone, kDecryptBadArgument or
// kDecryptNoCrypto.
DecryptResult SealPassword(const SealingKey& key, std::string_view password, std::string* stored);

// As SealPassword with 24 bytes of nonce. A nonce must never serve twice; this
// is for tests against known answers.
DecryptResult SealPasswordWithNonce(const SealingKey& key, const unsigned char* nonce,
                                    std::string_view password, std::string* stored);

// DecryptPasswdWithKey, whose contract is in platform/cr_runtime.h; the second
// one with a key at hand.
DecryptResult OpenPassword(const char* key_file, const char* stored, char* out,
                           std::size_t capacity);
DecryptResult OpenPasswordWithKey(const SealingKey& key, const char* stored, char* out,
                                  std::size_t capacity);

}  // namespace quarry::platform

#endif  // QUARRY_PLATFORM_SEALED_PASSWORD_H_
