// A sealed password opens to what was sealed; what was changed in any way, or never sealed, does
// not open, and the caller's buffer stays as it was.
#include <cstring>
#include <numeric>

#include "fuzz/target.h"
#include "platform/local/sealed_password.h"

namespace quarry::fuzz {

namespace {

// The password and the NUL after it, or the untouched buffer.
std::string Open(const platform::SealingKey& key, const std::string& stored) {
  std::string out(255, '?');
  const int result = OpenPasswordWithKey(key, stored.c_str(), out.data(), out.size());
  return result == kDecryptDone ? out.substr(0, out.find('\0') + 1) : out;
}

}  // namespace

// Fields: a stored text, a password, a change to its sealed form.
void TryInput(const std::string& input) {
  const std::vector<std::string> fields = Fields(input, 3);
  const std::string &password = fields[1], &change = fields[2], untouched(255, '?');
  unsigned char bytes[32];
  std::iota(std::begin(bytes), std::end(bytes), static_cast<unsigned char>(input.size()));
  platform::SealingKey key;
  Require(key.Set(bytes) == kDecryptDone, "any bytes are a key");
  Require(Open(key, fields[0]) == untouched, "what was not sealed does not open");

  std::string stored;
  const bool sealed = SealPasswordWithNonce(key, bytes, password, &stored) == kDecryptDone;
  const bool sealable = password.size() <= platform::kLongestPassword &&
                        password.find_first_of({"\0\n", 2}) == std::string::npos;
  Require(sealed == sealable, "a password of one line and fitting length is sealed");
  Saw(sealed ? "opened" : "refused to seal");
  if (!sealed) return;
  Require(Open(key, stored) == password + '\0', "what was sealed opens");

  if (change.size() < 3) return;
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(change[at]); };
  std::string changed = stored;
  changed.replace((byte(0) * 256U + byte(1)) % stored.size(), byte(2) % 2U, change.substr(3));
  if (std::strcmp(changed.c_str(), stored.c_str()) == 0) return;
  Require(Open(key, changed) == untouched, "what was changed does not open");
  Saw("forgery refused");
}

}  // namespace quarry::fuzz
