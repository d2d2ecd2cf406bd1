#include "platform/local/key_file.h"

#include <fcntl.h>
#include <sodium.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>

#include "platform/local/base64.h"
#include "platform/local/file_descriptor.h"
#include "platform/local/key_permissions.h"

namespace quarry::platform {

namespace {

constexpr std::string_view kPrefix = "quarry-config-key:v1:";
constexpr std::size_t kKeyBytes = crypto_aead_xchacha20poly1305_ietf_KEYBYTES;
constexpr std::size_t kEncodedBytes =
    sodium_base64_ENCODED_LEN(kKeyBytes, kBase64) - 1;  // the macro counts a NUL
static_assert(kKeyFileBytes == kPrefix.size() + kEncodedBytes + 1);

DecryptResult DecodeKey(const char* text, unsigned char* key) {
  if (std::memcmp(text, kPrefix.data(), kPrefix.size()) != 0 || text[kKeyFileBytes - 1] != '\n') {
    return kDecryptNotAKeyFile;
  }
  std::size_t size = 0;
  const bool decoded = DecodeBase64({text + kPrefix.size(), kEncodedBytes}, key, kKeyBytes, &size);
  return decoded && size == kKeyBytes ? kDecryptDone : kDecryptNotAKeyFile;
}

}  // namespace

SealingKey::SealingKey() : bytes_(kKeyBytes) {}

QUARRY_CLEARS_REGISTERS
DecryptResult SealingKey::Set(const unsigned char* bytes) {
  if (bytes_.data() == nullptr) return kDecryptNoCrypto;
  std::memcpy(bytes_.data(), bytes, kKeyBytes);
  return kDecryptDone;
}

DecryptResult SealingKey::Randomise() {
  if (bytes_.data() == nullptr) return kDecryptNoCrypto;
  randombytes_buf(bytes_.data(), kKeyBytes);
  return kDecryptDone;
}

QUARRY_CLEARS_REGISTERS
DecryptResult SealingKey::Load(const char* key_file) {
  // One byte more than a key file has, to detect a longer file.
  SecretBytes text(kKeyFileBytes + 1);
  if (bytes_.data() == nullptr || text.data() == nullptr) {
    return kDecryptNoCrypto;
  }
  const FileDescriptor file(open(key_file, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status {};
  if (file.get() == -1 || fstat(file.get(), &status) != 0) {
    return kDecryptNoKeyFile;
  }
  if (!S_ISREG(status.st_mode)) return kDecryptNotAKeyFile;
  const DecryptResult permitted = CheckKeyPermissions(file.get(), status);
  if (permitted != kDecryptDone) return permitted;

  std::size_t size = 0;
  if (!ReadUpTo(file.get(), text.text(), text.size(), &size)) {
    return kDecryptNoKeyFile;
  }
  return size == kKeyFileBytes ? DecodeKey(text.text(), bytes_.data()) : kDecryptNotAKeyFile;
}

QUARRY_CLEARS_REGISTERS
void EncodeKey(const SealingKey& key, SecretBytes* text) {
  std::memcpy(text->data(), kPrefix.data(), kPrefix.size());
  sodium_bin2base64(text->text() + kPrefix.size(), kEncodedBytes + 1, key.bytes(), kKeyBytes,
                    kBase64);
  text->data()[kKeyFileBytes - 1] = '\n';
  text->data()[kKeyFileBytes] = '\0';
}

}  // namespace quarry::platform
