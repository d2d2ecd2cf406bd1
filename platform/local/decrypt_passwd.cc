#include "platform/cr_runtime.h"
#include "platform/local/sealed_password.h"

extern "C" int DecryptPasswdWithKey(const char* key_file, const char* stored, char* out,
                                    std::size_t capacity) {
  return quarry::platform::OpenPassword(key_file, stored, out, capacity);
}
