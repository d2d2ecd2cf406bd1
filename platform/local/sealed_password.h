// Passwords sealed with a key: the form in which the local stand-in stores them. Not installed;
// DecryptPasswdWithKey and the quarry-config program share it.
//
// A stored password is "sealed:v1:" and in base64url
//
//   key id      4 bytes: the first of BLAKE2b-128, keyed with the key, over
//               "quarry-config key id"; tells another key from damage
//   nonce      24 bytes, random
//   ciphertext  the password padded to a multiple of 64 bytes, which hides its length
//   tag        16 bytes
//
// of XChaCha20-Poly1305 (IETF), with "sealed:v1:" and the key id as associated data, so that
// neither can be exchanged.
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

// The longest password in bytes, so that it fits the agent's capacity of 255.
inline constexpr std::size_t kLongestPassword = 254;

inline constexpr std::string_view kSealedPrefix = "sealed:v1:";

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

#endif  // QUARRY_PLATFORM_LOCAL_SEALED_PASSWORD_H_
