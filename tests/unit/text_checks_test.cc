#include "settings/text_checks.h"

#include <gtest/gtest.h>

#include "tools/terminal/terminal_text.h"

namespace quarry::tool {
namespace {

// All findings, each as "LINE:COLUMN+LENGTH MESSAGE", warnings with a "w".
std::string Findings(const std::string& text) {
  std::string all;
  for (const settings::Finding& f : settings::CheckText(text)) {
    all += std::to_string(f.line) + ':' + std::to_string(f.column) + '+' +
           std::to_string(f.length) + (f.IsError() ? " " : "w ") + f.message + '\n';
  }
  return all;
}

TEST(CheckText, FindsEveryErrorAndWarningInOrder) {
  struct Case {
    const char* name;
    std::string text;
    const char* findings;
  };
  const Case cases[] = {
      {"all well", "#c\n[a]\nx = 1\n ;d\n\ny=#fff\nz=a#b\nt=a# b\ne=\n[b]", ""},
      {"errors",
       "x=1\n  y \n=\n[b]\nx=0\n[abc\nx=1\n  [a\n[]\nx=2\n\t[]x]\n[a] ; x\n[a]]\nthreads 4\n  "
       "x\r\n=1\n\t= 1\n",
       "1:1+3 option line before any section\n"
       "2:3+1 option line before any section\n"
       "3:1+1 option line before any section\n"
       "6:1+4 section header without \"]\"\n"
       "8:3+2 section header without \"]\"\n"
       "9:2+1 section name is empty\n"
       "11:3+1 section name is empty\n"
       "12:5+3 text after the section header\n"
       "13:4+1 text after the section header\n"
       "14:1+9 option line without \"=\"\n"
       "15:3+1 option line without \"=\"\n"
       "16:1+1 option name is empty\n"
       "17:2+1 option name is empty\n"},
      {"byte-order mark", "\xEF\xBB\xBF[a]\nx=1\n\xEF\xBB\xBF#\n",
       "1:1+3 byte-order mark\n3:1+3 byte-order mark\n"},
      {"byte-order mark in the middle", "[b]\nx=1\n\xEF\xBB\xBF[a]\nx=2\n",
       "3:1+3 byte-order mark\n"},
      {"byte-order mark before an option", "\xEF\xBB\xBFx=1\ny=1\n",
       "1:1+3 byte-order mark\n2:1+3 option line before any section\n"},
      {"in order of columns", "[ a] x\n[b\t]\n",
       "1:2+2w blanks belong to the section name\n"
       "1:6+1 text after the section header\n"
       "2:2+2w blanks belong to the section name\n"},
      {"carriage returns", "[a]\r\n#c\r\nx=1\r\ny=2\r\n",
       "3:4+1w value ends in a carriage return, which the agent sees\n"},
      {"comments in values", "[a]\nx = 1 # c\ny=1\t;c\nz= # c\nu=a#b # c\n",
       "2:7+3w this is part of the value\n3:5+2w this is part of the value\n"
       "4:4+3w this is part of the value\n5:7+3w this is part of the value\n"},
      {"option again", "[a]\nx=1\n[b]\nx=1\n[A]\nX=2\nx=3\n",
       "6:1+1w repeated option: overrides line 2\n"
       "7:1+1w repeated option: overrides line 6\n"},
      {"section again", "#c\n[a]\n[b]\n[A]\n[a]\n",
       "4:2+1w repeated section: its comment above line 2 is dropped when a "
       "program saves this file\n"},
      {"comment at the end", "[a]\nx=1\n  #c\n;d\n\nbad", "6:1+3 option line without \"=\"\n"},
      {"in order of lines", "[a]\nx=# 1 # c\r\n",
       "2:3+8w this is part of the value\n"
       "2:10+1w value ends in a carriage return, which the agent sees\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Findings(c.text), c.findings);
  }
}

TEST(ExcerptOf, QuotesTheLineAndMarksIt) {
  struct Case {
    const char* name;
    std::string line;
    std::size_t offset, length;
    std::string shown, marks;
  };
  const std::string many(200, 'x');
  const Case cases[] = {
      {"tabs before", "\ta\tb", 3, 1, "\ta\tb", "\t \t^"},
      {"wide and combining",
       "x=\xE4\xB8\xAD\xE6\x96\x87"
       "e\xCC\x81 #",
       12, 1,
       "x=\xE4\xB8\xAD\xE6\x96\x87"
       "e\xCC\x81 #",
       std::string(8, ' ') + '^'},
      {"a tab first", "=\t  ", 1, 3, "=\t  ", " ^~~"},
      {"cut before a character", std::string(99, 'x') + "\xC3\xA4", 0, 1,
       std::string(99, 'x') + "...", "^"},
      {"tabs within", "ab\tcd", 0, 5, "ab\tcd", "^~"},
      {"controls", "\x7f[m\x07x", 4, 1, "\\x7f[m\\x07x", "          ^"},
      {"broken UTF-8", "\xC3(\xFF\xED\xA0\x80", 1, 1, "\\xc3(\\xff\\xed\\xa0\\x80", "    ^"},
      {"overlong and too large", "\xC0\xAF\xE0\x80\xAF\xF4\x90\x80\x80", 0, 1,
       "\\xc0\\xaf\\xe0\\x80\\xaf\\xf4\\x90\\x80\\x80", "^~~~"},
      {"hidden controls", "\xC2\x9B\xE2\x80\xAE\xE2\x80\x8F\xE2\x81\xA6\xE2\x81\xA9.", 14, 1,
       "\\xc2\\x9b\\xe2\\x80\\xae\\xe2\\x80\\x8f\\xe2\\x81\\xa6\\xe2\\x81\\xa9.",
       std::string(56, ' ') + '^'},
      {"past the end", "ab", 2, 0, "ab", "  ^"},
      {"long", many + "!" + many, 200, 1,
       "..." + std::string(40, 'x') + "!" + std::string(59, 'x') + "...",
       std::string(43, ' ') + '^'},
      {"long at its end", many, 199, 9, "..." + std::string(41, 'x'), std::string(43, ' ') + '^'},
      {"long in UTF-8", many + "\xF0\x9D\x84\x9E" + std::string(39, 'x') + "!", 243, 1,
       "...\xF0\x9D\x84\x9E" + std::string(39, 'x') + "!", std::string(43, ' ') + '^'},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Excerpt excerpt = ExcerptOf(c.line, c.offset, c.length);
    EXPECT_EQ(excerpt.line, c.shown);
    EXPECT_EQ(excerpt.marks, c.marks);
  }
}

}  // namespace
}  // namespace quarry::tool
