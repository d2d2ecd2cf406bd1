// Texts from files and command lines, made fit for a terminal.
#ifndef QUARRY_TOOLS_DISPLAY_H_
#define QUARRY_TOOLS_DISPLAY_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace quarry::tool {

// Whether every byte of `text` belongs to a well-formed UTF-8 character.
bool IsUtf8(std::string_view text);

// How many characters the text has; a byte that is no UTF-8 is one.
std::size_t CountCharacters(std::string_view text);

// The text with every byte that a terminal might act upon, or that is no valid
// UTF-8, as "\x1b": control characters, marks that reverse the direction.
std::string Shown(std::string_view text);

// A name for a message: shown, cut when it is long, in double quotes.
std::string Quoted(std::string_view name);

// The word as a shell takes it whole, fit for a terminal; and the name of a
// file, which no command takes for an option then.
std::string ShellQuoted(const std::string& word);
std::string ShellQuotedFile(const std::string& file);

// A line of a text as two lines for a terminal: the line itself and a caret
// line under it that marks `length` bytes (at least one) from `offset` on. Tabs
// stay and are copied; a long line is cut around the mark.
struct Excerpt {
  std::string line;
  std::string marks;
};
Excerpt ExcerptOf(std::string_view line, std::size_t offset, std::size_t length);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_DISPLAY_H_
