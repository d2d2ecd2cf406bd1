// Text from files and command lines, made fit for a terminal.
#ifndef QUARRY_TOOLS_TERMINAL_TERMINAL_TEXT_H_
#define QUARRY_TOOLS_TERMINAL_TERMINAL_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace quarry::tool {

// The text with every byte that a terminal might interpret or hide, or that is not valid UTF-8, as
// "\x1b": control characters, marks of the direction of writing, and invisible characters. A text
// without such bytes is unchanged, so to escape a text again changes nothing.
std::string EscapeForTerminal(std::string_view text);

// The word as a shell reads it whole, fit for a terminal; and the name of a file, which no command
// takes for an option then.
std::string ShellQuoted(const std::string& word);
std::string ShellQuotedFile(const std::string& file);

// A line of a text as two lines for a terminal: the line itself, and below it carets that mark
// `length` bytes (at least one) from `offset` on. Tabs stay and are copied; a line that is too wide
// is cut around the first mark.
struct Excerpt {
  std::string line;
  std::string marks;
};
// `indent` columns are before the line, and `width` in all; a width of less than `indent` + 20
// counts as that.
struct Margins {
  std::size_t indent, width;
};
Excerpt ExcerptOf(std::string_view line, std::size_t offset, std::size_t length, Margins margins);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_TERMINAL_TEXT_H_
