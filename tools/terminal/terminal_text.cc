#include "tools/terminal/terminal_text.h"

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <iterator>
#include <utility>

#include "tools/terminal/utf8.h"

namespace quarry::tool {

namespace {

// Of a long line, the bytes shown in all, and of these before the mark.
constexpr std::size_t kMaxLineBytes = 100;
constexpr std::size_t kBytesBeforeMark = 40;

// Control characters, separators of lines and paragraphs, and what Unicode lets a display ignore:
// marks of direction, joiners, fillers, variation selectors and tags. In ascending order.
constexpr std::pair<char32_t, char32_t> kUnsafeToPrint[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},       {0xAD, 0xAD},       {0x34F, 0x34F},     {0x61C, 0x61C},
    {0x115F, 0x1160}, {0x17B4, 0x17B5},   {0x180B, 0x180F},   {0x200B, 0x200F},   {0x2028, 0x202E},
    {0x2060, 0x206F}, {0x3164, 0x3164},   {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},
    {0xFFF0, 0xFFFB}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF},
};

bool IsSafeToPrint(char32_t code) {
  const auto* const range =
      std::lower_bound(std::begin(kUnsafeToPrint), std::end(kUnsafeToPrint), code,
                       [](const auto& unsafe, char32_t c) { return unsafe.second < c; });
  return range == std::end(kUnsafeToPrint) || code < range->first;
}

std::string Escaped(char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  return {'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
}

bool LoadCharacterTables() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the program has one thread.
  return std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
}

// How many columns a character occupies: two for many of East Asia, none for combining marks.
std::size_t ColumnsOf(char32_t code) {
  if (code < 0x80) return 1;
  static const bool tables_loaded = LoadCharacterTables();
  const int columns = tables_loaded ? wcwidth(static_cast<wchar_t>(code)) : 1;
  return columns < 0 ? 1 : static_cast<std::size_t>(columns);
}

// What is shown for the first bytes of a text, how many bytes these are, and how many columns it
// occupies.
struct DisplayUnit {
  std::string shown;
  std::size_t bytes;
  std::size_t columns;
};

DisplayUnit FirstDisplayUnit(std::string_view text) {
  const Character character = FirstCharacter(text);
  if (character.length == 0 || !IsSafeToPrint(character.code)) {
    return {Escaped(text[0]), 1, 4};
  }
  return {std::string(text.substr(0, character.length)), character.length,
          ColumnsOf(character.code)};
}

}  // namespace

std::string EscapeForTerminal(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const DisplayUnit unit = FirstDisplayUnit(text);
    shown += unit.shown;
    text.remove_prefix(unit.bytes);
  }
  return shown;
}

std::string ShellQuoted(const std::string& word) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./:@%+,-";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) {
    return word;
  }
  const bool escaped = EscapeForTerminal(word) != word;  // $'...' reads "\x1b"
  std::string quoted = escaped ? "$'" : "'";
  for (const char c : word) {
    if (c == '\'') {
      quoted += escaped ? "\\'" : "'\\''";
    } else if (escaped && c == '\\') {
      quoted += "\\\\";
    } else {
      quoted += c;
    }
  }
  return EscapeForTerminal(quoted) + '\'';
}

std::string ShellQuotedFile(const std::string& file) {
  return ShellQuoted(file.substr(0, 1) == "-" ? "./" + file : file);
}

Excerpt ExcerptOf(std::string_view line, std::size_t offset, std::size_t length) {
  std::size_t begin = 0;
  std::size_t end = line.size();
  if (line.size() > kMaxLineBytes) {
    begin = CharacterStart(line, offset - std::min(offset, kBytesBeforeMark));
    end = CharacterStart(line, std::min(begin + kMaxLineBytes, line.size()));
  }
  // Only the first column of a tab could be marked, so the marks end there.
  const std::size_t tab = line.find('\t', offset + 1);
  const std::size_t last = std::min({offset + length, tab, end});

  Excerpt excerpt;
  if (begin > 0) excerpt = {"...", "   "};
  for (std::size_t at = begin; at < end;) {
    const DisplayUnit unit =
        line[at] == '\t' ? DisplayUnit{"\t", 1, 1} : FirstDisplayUnit(line.substr(at, end - at));
    excerpt.line += unit.shown;
    if (at < offset) {
      excerpt.marks.append(unit.columns, line[at] == '\t' ? '\t' : ' ');
    } else if (at == offset) {
      excerpt.marks += '^';
      if (unit.columns > 1) excerpt.marks.append(unit.columns - 1, '~');
    } else if (at < last) {
      excerpt.marks.append(unit.columns, '~');
    }
    at += unit.bytes;
  }
  if (offset >= end) excerpt.marks += '^';  // after the last character
  if (end < line.size()) excerpt.line += "...";
  return excerpt;
}

}  // namespace quarry::tool
