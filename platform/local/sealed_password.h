// Passwords sealed with a key: the form in which the local stand-in stores them. Not installed;
// used by DecryptPasswdWithKey and the quarry-config program.
//
// A stored password is "sealed:v1:" followed by the base64url encoding of
//
//   key id      4 bytes: the first of BLAKE2b-128, keyed with the key, of
//               "quarry-config key id"; distinguishes a wrong key from damage
//   nonce      24 bytes, random
//   ciphertext  the password, padded to a multiple of 64 bytes to hide its length
//   tag        16 bytes
//
// Ciphertext and tag are those of XChaCha20-Poly1305 (IETF), with "sealed:v1:" and the key id as
// associated data, so that a change of either is detected.
//
// Nothing here throws, except SealPassword (std::bad_alloc). Any number of threads may call at
// once.
#ifndef QUARRY_PLATFORM_LOCAL_SEALED_PASSWORD_H_
#define QUARRY_PLATFORM_LOCAL_SEALED_PASSWORD_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/cr_runtime.h"
#include "platform/local/key_file.h"

namespace quarry::platform {

// The longest password in bytes; with a NUL it fits the agent's capacity of 255.
inline constexpr std::size_t kLongestPassword = 254;

inline constexpr std::string_view kSealedPrefix = "sealed:v1:";

// Sets `*stored` to the sealed form of the password, which is at most kLongestPassword bytes
// without NUL or line feed. Returns kDecryptDone, kDecryptBadArgument or kDecryptNoCrypto.
DecryptResult SealPassword(const SealingKey& key, std::string_view password, std::string* stored);

// Like SealPassword, with the given nonce of 24 bytes. A nonce must never be used twice; this is
// for tests with known answers.
DecryptResult SealPasswordWithNonce(const SealingKey& key, const unsigned char* nonce,
                                    std::string_view password, std::string* stored);

// Whether the stored password could be opened with some key, as far as its form tells: returns
// kDecryptDone, kDecryptNotSealed or kDecryptDamaged.
DecryptResult ValidateSealedForm(std::string_view stored);

// Implements DecryptPasswdWithKey (platform/cr_runtime.h).
DecryptResult OpenPassword(const char* key_file, const char* stored, char* out,
                           std::size_t capacity);

// Like OpenPassword, with a key that was loaded before. `stored` and `out` must not be null.
DecryptResult OpenPasswordWithKey(const SealingKey& key, const char* stored, char* out,
                                  std::size_t capacity);

}  // namespace quarry::platform

#endif  // QUARRY_PLATFORM_LOCAL_SEALED_PASSWORD_H_
