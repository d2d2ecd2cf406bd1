#include "tools/terminal/utf8.h"

namespace quarry::tool {

namespace {

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// The length that the first byte of a character announces; 0 for an invalid one.
std::size_t AnnouncedLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

}  // namespace

Character FirstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  const std::size_t length = AnnouncedLength(lead);
  if (length == 1) return {1, lead};
  if (length == 0 || length > text.size()) return {0, 0};

  char32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text[i])) return {0, 0};
    code = code << 6U | (static_cast<unsigned char>(text[i]) & 0x3FU);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kSmallest[length] || surrogate || code > 0x10FFFF) return {0, 0};
  return {length, code};
}

std::size_t CharacterStart(std::string_view text, std::size_t at) {
  for (std::size_t back = 0; back < 4 && back <= at; ++back) {
    const bool inside = at - back < text.size() && IsContinuation(text[at - back]);
    if (!inside) return at - back;
  }
  return at;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = FirstCharacter(text).length;
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::size_t CountCharacters(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) {
    const std::size_t length = FirstCharacter(text).length;
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return count;
}

}  // namespace quarry::tool
