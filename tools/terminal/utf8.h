// UTF-8 in texts that may hold any bytes.
#ifndef QUARRY_TOOLS_TERMINAL_UTF8_H_
#define QUARRY_TOOLS_TERMINAL_UTF8_H_

#include <cstddef>
#include <string_view>

namespace quarry::tool {

struct Character {
  std::size_t length;  // in bytes; 0 when the text does not begin with valid UTF-8
  char32_t code;
};

// The first character of a text, which must not be empty.
Character FirstCharacter(std::string_view text);

// Returns `at`, or up to three bytes less when a character would be cut there.
std::size_t CharacterStart(std::string_view text, std::size_t at);

// Whether every byte of `text` belongs to a valid character.
bool IsUtf8(std::string_view text);

// How many characters the text has; a byte that is not UTF-8 counts as one.
std::size_t CountCharacters(std::string_view text);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_UTF8_H_
