#include "tools/terminal/random_source.h"

#include <sodium.h>
#include <sys/random.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "tools/terminal/errors.h"

namespace quarry::tool {

namespace {

const char* SourceName() { return "getrandom"; }

void Fill(void* buffer, std::size_t size) {
  auto* const bytes = static_cast<unsigned char*>(buffer);
  for (std::size_t filled = 0; filled < size;) {
    const ssize_t count = getrandom(bytes + filled, size - filled, 0);
    if (count >= 0) {
      filled += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      // libsodium, which calls this, has no way to fail.
      WriteDiagnostics(DiagnosticsOf(settings::SystemError("get random bytes", "", errno)));
      _exit(kExitFailed);
    }
  }
}

std::uint32_t Draw() {
  std::uint32_t number = 0;
  Fill(&number, sizeof number);
  return number;
}

randombytes_implementation source = {SourceName, Draw, nullptr, nullptr, Fill, nullptr};

}  // namespace

void SetRandomSource() { (void)randombytes_set_implementation(&source); }

}  // namespace quarry::tool
