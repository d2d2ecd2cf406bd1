#include "tools/terminal/terminal_text.h"

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <iterator>
#include <utility>

#include "tools/terminal/utf8.h"

namespace quarry::tool {

namespace {

constexpr char kEllipsis[] = "...";
constexpr std::size_t kEllipsisColumns = 3;
constexpr std::size_t kTabStop = 8;
// A part with more bytes than this for each column, as combining marks have, is cut as if it were
// too wide.
constexpr std::size_t kMaxBytesPerColumn = 4;

// Control characters, separators of lines and paragraphs, and what Unicode lets a display ignore:
// marks of direction, joiners, fillers, variation selectors and tags. In ascending order.
constexpr std::pair<char32_t, char32_t> kUnsafeToPrint[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},       {0xAD, 0xAD},       {0x34F, 0x34F},     {0x61C, 0x61C},
    {0x115F, 0x1160}, {0x17B4, 0x17B5},   {0x180B, 0x180F},   {0x200B, 0x200F},   {0x2028, 0x202E},
    {0x2060, 0x206F}, {0x3164, 0x3164},   {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},
    {0xFFF0, 0xFFFB}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF},
};

// Searched from the start, which is fastest for ASCII.
bool IsSafeToPrint(char32_t code) {
  const auto* const range = std::find_if(std::begin(kUnsafeToPrint), std::end(kUnsafeToPrint),
                                         [=](const auto& unsafe) { return code <= unsafe.second; });
  return range == std::end(kUnsafeToPrint) || code < range->first;
}

bool IsPrintableAscii(char c) { return c >= ' ' && c <= '~'; }

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

// The same for a line that is quoted, whose tabs stay.
DisplayUnit FirstLineUnit(std::string_view text) {
  return text[0] == '\t' ? DisplayUnit{"\t", 1, 1} : FirstDisplayUnit(text);
}

std::size_t ColumnsOf(const DisplayUnit& unit, std::size_t column) {
  return unit.shown == "\t" ? kTabStop - column % kTabStop : unit.columns;
}

// How many columns the text occupies; at most, for its tabs are counted as if at tab stops.
std::size_t MaxColumns(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    const DisplayUnit unit = FirstLineUnit(text);
    columns += ColumnsOf(unit, 0);
    text.remove_prefix(unit.bytes);
  }
  return columns;
}

// How many bytes of the text can be shown in `columns` from the column `column` on.
std::size_t HeadThatFits(std::string_view text, std::size_t column, std::size_t columns) {
  const std::size_t max_bytes = columns * kMaxBytesPerColumn;
  const std::size_t limit = column + columns;
  std::size_t bytes = 0;
  while (bytes < text.size()) {
    const DisplayUnit unit = FirstLineUnit(text.substr(bytes));
    column += ColumnsOf(unit, column);
    if (column > limit || bytes + unit.bytes > max_bytes) break;
    bytes += unit.bytes;
  }
  return bytes;
}

// Where the end of the text begins that can be shown in `columns`.
std::size_t TailThatFits(std::string_view text, std::size_t columns) {
  const std::size_t max_bytes = columns * kMaxBytesPerColumn;
  std::size_t begin = CharacterStart(text, text.size() - std::min(text.size(), max_bytes));
  for (std::size_t used = MaxColumns(text.substr(begin)); used > columns;) {
    const DisplayUnit unit = FirstLineUnit(text.substr(begin));
    used -= ColumnsOf(unit, 0);
    begin += unit.bytes;
  }
  return begin;
}

// The bytes of a line that are shown, those around the offset.
struct Window {
  std::size_t begin, end;
};

Window WindowAround(std::string_view line, std::size_t offset, Margins margins) {
  constexpr std::size_t kMinColumns = 20;
  const std::size_t columns =
      std::max(margins.width, margins.indent + kMinColumns) - margins.indent;
  const std::size_t last_mark = offset >= line.size() ? 1 : 0;  // is after the line
  if (HeadThatFits(line, margins.indent, columns - last_mark) == line.size()) {
    return {0, line.size()};
  }

  // Two fifths are before the mark, and what the text from there on leaves free.
  const std::string_view head = line.substr(0, offset);
  const std::string_view tail = line.substr(head.size());
  const std::size_t used = MaxColumns(tail.substr(0, HeadThatFits(tail, 0, columns))) + last_mark;
  const std::size_t before =
      std::max(columns * 2 / 5, columns - std::min(used + kEllipsisColumns, columns));
  if (TailThatFits(head, before) == 0) {
    return {0, HeadThatFits(line, margins.indent, columns - kEllipsisColumns)};
  }
  const std::size_t begin = TailThatFits(head, before - kEllipsisColumns);
  const std::string_view rest = line.substr(begin);
  const std::size_t column = margins.indent + kEllipsisColumns;
  const std::size_t room = columns - kEllipsisColumns;
  std::size_t bytes = HeadThatFits(rest, column, room - last_mark);
  if (bytes < rest.size()) bytes = HeadThatFits(rest, column, room - kEllipsisColumns);
  return {begin, begin + bytes};
}

}  // namespace

std::string EscapeForTerminal(std::string_view text) {
  if (std::all_of(text.begin(), text.end(), IsPrintableAscii)) return std::string(text);
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

Excerpt ExcerptOf(std::string_view line, std::size_t offset, std::size_t length, Margins margins) {
  const Window window = WindowAround(line, offset, margins);
  // Only the first column of a tab could be marked, so the marks end there.
  const std::size_t tab = line.find('\t', offset + 1);
  const std::size_t last = std::min({offset + length, tab, window.end});

  Excerpt excerpt;
  if (window.begin > 0) excerpt = {kEllipsis, std::string(kEllipsisColumns, ' ')};
  for (std::size_t at = window.begin; at < window.end;) {
    const DisplayUnit unit = FirstLineUnit(line.substr(at, window.end - at));
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
  if (offset >= window.end) excerpt.marks += '^';  // after the last character
  if (window.end < line.size()) excerpt.line += kEllipsis;
  return excerpt;
}

}  // namespace quarry::tool
