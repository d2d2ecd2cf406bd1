#include "tools/secrets.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstring>

#include "platform/config_names.h"
#include "tools/nearest.h"
#include "tools/scan.h"

namespace quarry::tool {

namespace {

constexpr std::size_t kShortest = 4;  // bytes of a secret that is searched for
constexpr std::string_view kSeparators = " \t=:\"'";
constexpr std::string_view kBeforeNames = " \t\r=:\"'";

std::string PasswordName() {
  return ::storage::config::EntryName(::storage::config::kEntryPassword);
}

// The end of the first word that is the name of the password, in any letter
// case, wherever it stands in the line; npos when there is none.
std::size_t EndOfPasswordName(const std::string& line) {
  const std::string name = PasswordName();
  for (std::size_t at = 0; at + name.size() <= line.size(); ++at) {
    const std::string part = line.substr(at, name.size());
    const std::size_t end = at + name.size();
    const bool whole = end == line.size() || kSeparators.find(line[end]) != std::string::npos;
    if (whole && SameName(part, name)) return end;
  }
  return std::string::npos;
}

// The same for a word before the first "=" that was meant to be the name.
std::size_t EndOfNearName(const std::string& line) {
  const std::string text = line.substr(0, line.find('='));
  for (std::size_t begin = 0;;) {
    begin = text.find_first_not_of(kBeforeNames, begin);
    if (begin == std::string::npos) return begin;
    const std::size_t end = std::min(text.find_first_of(kSeparators, begin), text.size());
    const std::string word = text.substr(begin, end - begin);
    if (!NearestNames(word, {PasswordName()}).empty()) return end;
    begin = end;
  }
}

}  // namespace

std::size_t FindSecret(std::string_view line) {
  constexpr std::size_t kSearched = 1000;  // the rest of a longer line is a value
  const std::string searched(line.substr(0, kSearched));
  std::size_t end = EndOfPasswordName(searched);
  if (end == std::string::npos) end = EndOfNearName(searched);
  return end == std::string::npos ? end : line.find_first_not_of(kSeparators, end);
}

Masker::~Masker() {
  for (std::string& secret : secrets_) {
    explicit_bzero(secret.data(), secret.size());
  }
}

void Masker::Hide(const std::string& secret) {
  if (secret.empty()) return;
  // The longest first, for a shorter one may be a part of it.
  const auto place = std::find_if(secrets_.begin(), secrets_.end(), [&](const std::string& other) {
    return other.size() < secret.size();
  });
  secrets_.insert(place, secret);
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
