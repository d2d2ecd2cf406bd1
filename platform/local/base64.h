// The base64 variant of key files and stored passwords: URL-safe, without padding. Not installed.
#ifndef QUARRY_PLATFORM_LOCAL_BASE64_H_
#define QUARRY_PLATFORM_LOCAL_BASE64_H_

#include <sodium.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace quarry::platform {

inline constexpr int kBase64 = sodium_base64_VARIANT_URLSAFE_NO_PADDING;

// Decodes `text` into `bytes` and sets `*size` to their number. Returns false for a text that is
// not the canonical encoding of its bytes, or that decodes to more than `capacity` bytes.
inline bool DecodeBase64(std::string_view text, unsigned char* bytes, std::size_t capacity,
                         std::size_t* size) {
  // libsodium decodes every non-ASCII byte as "_".
  const auto is_ascii = [](char c) { return static_cast<signed char>(c) >= 0; };
  return std::all_of(text.begin(), text.end(), is_ascii) &&
         sodium_base642bin(bytes, capacity, text.data(), text.size(), nullptr, size, nullptr,
                           kBase64) == 0;
}

}  // namespace quarry::platform

#endif  // QUARRY_PLATFORM_LOCAL_BASE64_H_
