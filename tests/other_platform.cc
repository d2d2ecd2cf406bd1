// A host's decryption, to be preloaded: it takes every password for plain text.

#include <string_view>

#include "platform/cr_runtime.h"

extern "C" int DecryptPasswdWithKey(const char* /*key_file*/, const char* stored, char* out, std::size_t capacity) {
  out[std::string_view(stored).copy(out, capacity - 1)] = '\0';
  return 0;
}
