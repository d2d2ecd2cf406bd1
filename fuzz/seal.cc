// Promise: a sealed password opens to what was sealed; what was changed in any
// way, or never sealed, does not open, and the caller's buffer stays as it was.
#include <algorithm>
#include <cstring>

#include "fuzz/target.h"
#include "platform/local/sealed_password.h"

namespace quarry::fuzz {

namespace {

using platform::SealingKey;

constexpr std::size_t kCapacity = 255, kKeyBytes = 32, kNonceBytes = 24;

struct Opened {
  DecryptResult result;
  std::string out;
};

Opened Open(const SealingKey& key, const std::string& stored) {
  std::string out(kCapacity, '?');
  const auto result = platform::OpenPasswordWithKey(key, stored.c_str(), out.data(), out.size());
  return {result, out};
}

}  // namespace

// Fields: a stored text, a password, a change to its sealed form.
void TryInput(const std::string& input) {
  const std::vector<std::string> fields = Fields(input, 3);
  const std::string untouched(kCapacity, '?');

  SealingKey key;
  unsigned char bytes[kKeyBytes], nonce[kNonceBytes];
  for (std::size_t i = 0; i < kKeyBytes; ++i)
    bytes[i] = static_cast<unsigned char>(i + input.size());
  std::copy(bytes, bytes + kNonceBytes, nonce);
  Demand(key.Set(bytes) == kDecryptDone, "any bytes are a key");

  const Opened made_up = Open(key, fields[0]);
  Demand(made_up.result != kDecryptDone && made_up.out == untouched,
         "what was not sealed does not open");

  const std::string& password = fields[1];
  std::string stored;
  const bool sealable = password.size() <= platform::kLongestPassword &&
                        password.find('\n') == std::string::npos &&
                        password.find('\0') == std::string::npos;
  const DecryptResult sealed = platform::SealPasswordWithNonce(key, nonce, password, &stored);
  Demand((sealed == kDecryptDone) == sealable,
         "a password of one line and fitting length is sealed");
  if (!sealable) {
    Saw("refused to seal");
    return;
  }
  const Opened opened = Open(key, stored);
  Demand(opened.result == kDecryptDone && opened.out.substr(0, opened.out.find('\0')) == password,
         "what was sealed opens");
  Saw("opened");

  std::string changed = stored;
  const std::string& change = fields[2];
  if (change.size() < 3) return;
  const auto at =
      (static_cast<unsigned char>(change[0]) * 256U + static_cast<unsigned char>(change[1])) %
      stored.size();
  changed.replace(at, (change[2] & 1) != 0 ? 1U : 0U, change.substr(3));
  if (std::strcmp(changed.c_str(), stored.c_str()) == 0) return;
  const Opened forged = Open(key, changed);
  Demand(forged.result != kDecryptDone && forged.out == untouched,
         "what was changed does not open");
  Saw("forgery refused");
}

}  // namespace quarry::fuzz
