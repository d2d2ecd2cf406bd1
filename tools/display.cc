#include "tools/display.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

namespace quarry::tool {

namespace {

constexpr std::size_t kLongestName = 60;  // bytes shown of a name

// Of a long line, the bytes shown in all and before the mark.
constexpr std::size_t kLongestLine = 100;
constexpr std::size_t kBeforeMark = 40;

struct Character {
  std::size_t length;  // in bytes; 0 when the text does not begin with UTF-8
  char32_t code;
};

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// The length that the first byte of a character announces; 0 for none.
std::size_t AnnouncedLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

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

// `at`, or up to three bytes less when a character would be cut there.
std::size_t CharacterStart(std::string_view text, std::size_t at) {
  for (std::size_t back = 0; back < 4 && back <= at; ++back) {
    const bool inside = at - back < text.size() && IsContinuation(text[at - back]);
    if (!inside) return at - back;
  }
  return at;
}

bool IsHarmless(char32_t code) {
  if (code < 0x20 || (code >= 0x7F && code < 0xA0)) return false;
  // Line and paragraph separators, embeddings, overrides, isolates.
  const bool reorders = (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) ||
                        code == 0xFEFF || code == 0x200E || code == 0x200F;
  return !reorders;
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

// How many columns of a terminal a character takes: two for many of East Asia,
// none for accents that combine with the one before.
std::size_t ColumnsOf(char32_t code) {
  if (code < 0x80) return 1;
  static const bool tables_loaded = LoadCharacterTables();
  const int columns = tables_loaded ? wcwidth(static_cast<wchar_t>(code)) : 1;
  return columns < 0 ? 1 : static_cast<std::size_t>(columns);
}

// What is shown for the front of a text, the bytes of it that this stands for,
// and the columns that it takes.
struct Piece {
  std::string shown;
  std::size_t bytes;
  std::size_t columns;
};

Piece FirstPiece(std::string_view text) {
  const Character character = FirstCharacter(text);
  if (character.length == 0 || !IsHarmless(character.code)) {
    return {Escaped(text[0]), 1, 4};
  }
  return {std::string(text.substr(0, character.length)), character.length,
          ColumnsOf(character.code)};
}

}  // namespace

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

std::string Shown(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const Piece piece = FirstPiece(text);
    shown += piece.shown;
    text.remove_prefix(piece.bytes);
  }
  return shown;
}

std::string Quoted(std::string_view name) {
  if (name.size() <= kLongestName) return '"' + Shown(name) + '"';
  const std::size_t cut = CharacterStart(name, kLongestName);
  return '"' + Shown(name.substr(0, cut)) + "...\"";
}

std::string ShellQuoted(const std::string& word) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./:@%+,-";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) {
    return word;
  }
  const bool escaped = Shown(word) != word;  // $'...' takes "\x1b"
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
  return Shown(quoted) + '\'';
}

std::string ShellQuotedFile(const std::string& file) {
  return ShellQuoted(file.substr(0, 1) == "-" ? "./" + file : file);
}

Excerpt ExcerptOf(std::string_view line, std::size_t offset, std::size_t length) {
  std::size_t begin = 0;
  std::size_t end = line.size();
  if (line.size() > kLongestLine) {
    begin = CharacterStart(line, offset - std::min(offset, kBeforeMark));
    end = CharacterStart(line, std::min(begin + kLongestLine, line.size()));
  }
  // Under a tab only its first column could be marked, so the mark ends there.
  const std::size_t tab = line.find('\t', offset + 1);
  const std::size_t last = std::min({offset + length, tab, end});

  Excerpt excerpt;
  if (begin > 0) excerpt = {"...", "   "};
  for (std::size_t at = begin; at < end;) {
    const Piece piece =
        line[at] == '\t' ? Piece{"\t", 1, 1} : FirstPiece(line.substr(at, end - at));
    excerpt.line += piece.shown;
    if (at < offset) {
      excerpt.marks.append(piece.columns, line[at] == '\t' ? '\t' : ' ');
    } else if (at == offset) {
      excerpt.marks += '^';
      if (piece.columns > 1) excerpt.marks.append(piece.columns - 1, '~');
    } else if (at < last) {
      excerpt.marks.append(piece.columns, '~');
    }
    at += piece.bytes;
  }
  if (offset >= end) excerpt.marks += '^';  // behind the last character
  if (end < line.size()) excerpt.line += "...";
  return excerpt;
}

}  // namespace quarry::tool
