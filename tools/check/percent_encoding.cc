#include "tools/check/percent_encoding.h"

namespace quarry::tool {

std::string PercentEncoded(std::string_view text, bool (*kept)(char)) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    if (kept(c)) {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded += {'%', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
  }
  return encoded;
}

}  // namespace quarry::tool
