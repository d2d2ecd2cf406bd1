#include "tools/secrets.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include "dmconfig/config.h"
#include "dmconfig/line.h"
#include "platform/config_names.h"

namespace quarry::tool {

namespace {

constexpr std::size_t kShortest = 4;  // bytes of a secret that is searched for

bool IsNamed(const std::string& name, const std::string& wanted) {
  const storage::dmconfig::StringCaseCmp before;
  const bool differs = before(name, wanted) || before(wanted, name);
  return !differs;
}

}  // namespace

std::size_t FindSecret(std::string_view line) {
  const std::string_view text = storage::dmconfig::WithoutLeadingBlanks(line);
  const std::size_t name_end = text.find_first_of(" \t=:");
  const std::string name(text.substr(0, name_end));
  if (!IsNamed(name, ::storage::config::EntryName(
                         ::storage::config::kEntryPassword))) {
    return std::string_view::npos;
  }
  const std::size_t begin = text.find_first_not_of(" \t=:", name.size());
  return begin == std::string_view::npos ? begin
                                         : begin + line.size() - text.size();
}

void Masker::Hide(const std::string& secret) {
  if (!secret.empty()) secrets_.push_back(secret);
}

std::string Masker::Masked(std::string text) const {
  for (const std::string& secret : secrets_) {
    if (text == secret) return kMask;
    if (secret.size() < kShortest) continue;
    for (std::size_t at = text.find(secret); at != std::string::npos;
         at = text.find(secret, at + sizeof kMask - 1)) {
      text.replace(at, secret.size(), kMask);
    }
  }
  return text;
}

void ForbidCoreDumps() {
  // Either alone is enough in most systems, and a failure leaves us no worse.
  const rlimit none = {0, 0};
  (void)setrlimit(RLIMIT_CORE, &none);
  (void)prctl(PR_SET_DUMPABLE, 0);
}

}  // namespace quarry::tool
