#include "platform/local/sealed_password.h"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/local/base64.h"
#include "platform/local/secret_bytes.h"

namespace quarry::platform {

namespace {

constexpr std::size_t kIdBytes = 4;
constexpr std::size_t kNonceBytes = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
constexpr std::size_t kTagBytes = crypto_aead_xchacha20poly1305_ietf_ABYTES;
constexpr std::size_t kKeyBytes = crypto_aead_xchacha20poly1305_ietf_KEYBYTES;
constexpr std::size_t kBlockBytes = 64;  // passwords are padded to multiples
constexpr std::size_t kLongestPadded = (kLongestPassword / kBlockBytes + 1) * kBlockBytes;
constexpr std::size_t kHeadBytes = kIdBytes + kNonceBytes;
constexpr std::size_t kLongestSealed = kHeadBytes + kLongestPadded + kTagBytes;

using KeyId = std::array<unsigned char, kIdBytes>;

// The decoded bytes of a stored password, without its prefix.
struct SealedBytes {
  std::array<unsigned char, kLongestSealed> bytes{};
  std::size_t size = 0;

  const unsigned char* id() const { return bytes.data(); }
  const unsigned char* nonce() const { return bytes.data() + kIdBytes; }
  const unsigned char* ciphertext() const { return bytes.data() + kHeadBytes; }
  std::size_t padded_size() const { return size - kHeadBytes - kTagBytes; }
};

KeyId IdOf(const SealingKey& key) {
  constexpr std::string_view kText = "quarry-config key id";
  std::array<unsigned char, crypto_generichash_BYTES_MIN> hash{};
  crypto_generichash(hash.data(), hash.size(), reinterpret_cast<const unsigned char*>(kText.data()),
                     kText.size(), key.bytes(), kKeyBytes);
  KeyId id{};
  std::copy_n(hash.begin(), id.size(), id.begin());
  return id;
}

// The prefix and the key id, which the tag authenticates.
using AssociatedData = std::array<unsigned char, kSealedPrefix.size() + kIdBytes>;

AssociatedData AssociatedDataOf(const unsigned char* id) {
  AssociatedData data{};
  auto* const end = std::copy(kSealedPrefix.begin(), kSealedPrefix.end(), data.begin());
  std::copy_n(id, kIdBytes, end);
  return data;
}

bool IsSealed(std::string_view stored) {
  return stored.substr(0, kSealedPrefix.size()) == kSealedPrefix;
}

DecryptResult Decode(std::string_view stored, SealedBytes* sealed) {
  if (!IsSealed(stored)) return kDecryptNotSealed;
  stored.remove_prefix(kSealedPrefix.size());
  const bool decoded =
      DecodeBase64(stored, sealed->bytes.data(), sealed->bytes.size(), &sealed->size);
  const bool sized = decoded && sealed->size >= kHeadBytes + kTagBytes &&
                     sealed->padded_size() > 0 && sealed->padded_size() % kBlockBytes == 0;
  return sized ? kDecryptDone : kDecryptDamaged;
}

bool DecryptInto(unsigned char* padded, const SealedBytes& sealed, const SealingKey& key) {
  const AssociatedData data = AssociatedDataOf(sealed.id());
  return crypto_aead_xchacha20poly1305_ietf_decrypt_detached(
             padded, nullptr, sealed.ciphertext(), sealed.padded_size(),
             sealed.ciphertext() + sealed.padded_size(), data.data(), data.size(), sealed.nonce(),
             key.bytes()) == 0;
}

// Checks that the password was sealed with this key and not changed since.
DecryptResult Verify(const SealedBytes& sealed, const SealingKey& key) {
  const KeyId id = IdOf(key);
  if (sodium_memcmp(id.data(), sealed.id(), id.size()) != 0) {
    return kDecryptOtherKey;
  }
  return DecryptInto(nullptr, sealed, key) ? kDecryptDone : kDecryptDamaged;
}

std::string Encode(const SealedBytes& sealed) {
  std::array<char, sodium_base64_ENCODED_LEN(kLongestSealed, kBase64)> text{};
  sodium_bin2base64(text.data(), text.size(), sealed.bytes.data(), sealed.size, kBase64);
  return std::string(kSealedPrefix) + text.data();
}

}  // namespace

QUARRY_CLEARS_REGISTERS
DecryptResult SealPasswordWithNonce(const SealingKey& key, const unsigned char* nonce,
                                    std::string_view password, std::string* stored) {
  const bool allowed =
      password.size() <= kLongestPassword &&
      password.find_first_of(std::string_view("\0\n", 2)) == std::string_view::npos;
  if (!allowed) return kDecryptBadArgument;
  SecretBytes padded(kLongestPadded);
  if (padded.data() == nullptr) return kDecryptNoCrypto;

  std::copy(password.begin(), password.end(), padded.text());
  std::size_t padded_size = 0;
  if (sodium_pad(&padded_size, padded.data(), password.size(), kBlockBytes, padded.size()) != 0) {
    return kDecryptNoCrypto;
  }

  const KeyId id = IdOf(key);
  const AssociatedData data = AssociatedDataOf(id.data());
  SealedBytes sealed;
  std::copy(id.begin(), id.end(), sealed.bytes.begin());
  std::copy_n(nonce, kNonceBytes, sealed.bytes.begin() + kIdBytes);
  crypto_aead_xchacha20poly1305_ietf_encrypt(sealed.bytes.data() + kHeadBytes, nullptr,
                                             padded.data(), padded_size, data.data(), data.size(),
                                             nullptr, nonce, key.bytes());
  sealed.size = kHeadBytes + padded_size + kTagBytes;
  *stored = Encode(sealed);
  return kDecryptDone;
}

DecryptResult SealPassword(const SealingKey& key, std::string_view password, std::string* stored) {
  std::array<unsigned char, kNonceBytes> nonce{};
  randombytes_buf(nonce.data(), nonce.size());
  return SealPasswordWithNonce(key, nonce.data(), password, stored);
}

DecryptResult ValidateSealedForm(std::string_view stored) {
  SealedBytes sealed;
  return Decode(stored, &sealed);
}

QUARRY_CLEARS_REGISTERS
DecryptResult OpenPasswordWithKey(const SealingKey& key, const char* stored, char* out,
                                  std::size_t capacity) {
  SealedBytes sealed;
  DecryptResult result = Decode(stored, &sealed);
  if (result != kDecryptDone) return result;
  result = Verify(sealed, key);
  if (result != kDecryptDone) return result;

  SecretBytes padded(sealed.padded_size());
  if (padded.data() == nullptr) return kDecryptNoCrypto;
  std::size_t size = 0;
  const bool opened = DecryptInto(padded.data(), sealed, key) &&
                      sodium_unpad(&size, padded.data(), padded.size(), kBlockBytes) == 0;
  if (!opened) return kDecryptDamaged;
  if (size >= capacity) return kDecryptTooLong;
  std::memcpy(out, padded.data(), size);
  out[size] = '\0';
  return kDecryptDone;
}

QUARRY_CLEARS_REGISTERS
DecryptResult OpenPassword(const char* key_file, const char* stored, char* out,
                           std::size_t capacity) {
  const bool given = key_file != nullptr && stored != nullptr && out != nullptr;
  if (!given || capacity == 0) return kDecryptBadArgument;
  if (!IsSealed(stored)) return kDecryptNotSealed;  // even when the key file is unusable
  SealingKey key;
  const DecryptResult result = key.Load(key_file);
  return result == kDecryptDone ? OpenPasswordWithKey(key, stored, out, capacity) : result;
}

}  // namespace quarry::platform
