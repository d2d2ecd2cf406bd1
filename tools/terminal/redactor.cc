#include "tools/terminal/redactor.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstring>

namespace quarry::tool {

namespace {

constexpr std::size_t kMinSearchedBytes = 4;

}  // namespace

Redactor::~Redactor() {
  for (std::string& secret : secrets_) {
    explicit_bzero(secret.data(), secret.size());
  }
}

void Redactor::Hide(const std::string& secret) {
  if (secret.empty()) return;
  // The longest first, for a shorter one may be a part of it.
  const auto place = std::find_if(secrets_.begin(), secrets_.end(), [&](const std::string& other) {
    return other.size() < secret.size();
  });
  secrets_.insert(place, secret);
}

std::string Redactor::Redact(std::string text) const {
  for (const std::string& secret : secrets_) {
    if (text == secret) return kMask;
    if (secret.size() < kMinSearchedBytes) continue;
    for (std::size_t at = text.find(secret); at != std::string::npos;
         at = text.find(secret, at + sizeof kMask - 1)) {
      text.replace(at, secret.size(), kMask);
    }
  }
  return text;
}

void DisableCoreDumps() {
  // Either alone is enough on most systems, and a failure leaves us no worse off.
  const rlimit none = {0, 0};
  (void)setrlimit(RLIMIT_CORE, &none);
  (void)prctl(PR_SET_DUMPABLE, 0);
}

}  // namespace quarry::tool
