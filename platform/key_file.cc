// Key files: reading, who may have access, making new ones.

#include <fcntl.h>
#include <sodium.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/file_descriptor.h"
#include "platform/sealed_password.h"

namespace quarry::platform {

namespace {

constexpr std::string_view kPrefix = "quarry-config-key:v1:";
constexpr std::size_t kKeyBytes = crypto_aead_xchacha20poly1305_ietf_KEYBYTES;
constexpr int kBase64 = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
constexpr std::size_t kEncodedBytes =
    sodium_base64_ENCODED_LEN(kKeyBytes, kBase64) - 1;  // counts a NUL
constexpr std::size_t kFileBytes = kPrefix.size() + kEncodedBytes + 1;

// Whether nobody but the caller and root can have read or written the key.
bool IsPrivate(const struct stat& status) {
  const uid_t caller = geteuid();
  const bool trusted_owner =
      caller == 0 || status.st_uid == caller || status.st_uid == 0;
  const bool mounted_secret =
      caller != 0 && status.st_uid == 0 && status.st_gid == getegid();
  const mode_t allowed = mounted_secret ? S_IRWXU | S_IRGRP : S_IRWXU;
  const mode_t permissions = status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
  return trusted_owner && (permissions & ~allowed) == 0;
}

DecryptResult DecodeKey(const char* text, unsigned char* key) {
  if (std::memcmp(text, kPrefix.data(), kPrefix.size()) != 0 ||
      text[kFileBytes - 1] != '\n') {
    return kDecryptNotAKeyFile;
  }
  std::size_t size = 0;
  const bool decoded =
      sodium_base642bin(key, kKeyBytes, text + kPrefix.size(), kEncodedBytes,
                        nullptr, &size, nullptr, kBase64) == 0;
  return decoded && size == kKeyBytes ? kDecryptDone : kDecryptNotAKeyFile;
}

// The line of a key file, with its line feed.
void EncodeKey(const SealingKey& key, SecretBytes* line) {
  std::memcpy(line->data(), kPrefix.data(), kPrefix.size());
  sodium_bin2base64(line->text() + kPrefix.size(), kEncodedBytes + 1,
                    key.bytes(), kKeyBytes, kBase64);
  line->data()[kFileBytes - 1] = '\n';
}

// Only the owner may write to the folder, or the key could be exchanged.
int CheckFolder(const FileDescriptor& folder) {
  struct stat status {};
  if (fstat(folder.get(), &status) != 0) return errno;
  return (status.st_mode & (S_IWGRP | S_IWOTH)) == 0 ? 0 : EPERM;
}

int FillKeyFile(const FileDescriptor& folder, FileDescriptor* file,
                SecretBytes* line) {
  if (!WriteAll(file->get(), line->text(), kFileBytes)) return errno;
  if (fsync(file->get()) != 0) return errno;
  if (!file->Close()) return errno;
  return fsync(folder.get()) == 0 ? 0 : errno;
}

}  // namespace

SealingKey::SealingKey() : bytes_(kKeyBytes) {}

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

DecryptResult SealingKey::Load(const char* key_file) {
  // One byte more than a key file has, to see that it ends there.
  SecretBytes text(kFileBytes + 1);
  if (bytes_.data() == nullptr || text.data() == nullptr) {
    return kDecryptNoCrypto;
  }
  const FileDescriptor file(
      open(key_file, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status {};
  if (file.get() == -1 || fstat(file.get(), &status) != 0) {
    return kDecryptNoKeyFile;
  }
  if (!S_ISREG(status.st_mode)) return kDecryptNotAKeyFile;
  if (!IsPrivate(status)) return kDecryptKeyTooOpen;

  std::size_t size = 0;
  if (!ReadUpTo(file.get(), text.text(), text.size(), &size)) {
    return kDecryptNoKeyFile;
  }
  return size == kFileBytes ? DecodeKey(text.text(), bytes_.data())
                            : kDecryptNotAKeyFile;
}

int WriteNewKeyFile(const std::string& folder_name) {
  SealingKey key;
  SecretBytes line(kFileBytes + 1);
  if (key.Randomise() != kDecryptDone || line.data() == nullptr) return ENOMEM;
  EncodeKey(key, &line);

  const FileDescriptor folder(
      open(folder_name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.get() == -1) return errno;
  if (const int error = CheckFolder(folder)) return error;

  FileDescriptor file(openat(
      folder.get(), "auth.key",
      O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (file.get() == -1) return errno;
  const int error = FillKeyFile(folder, &file, &line);
  if (error != 0) unlinkat(folder.get(), "auth.key", 0);
  return error;
}

}  // namespace quarry::platform
