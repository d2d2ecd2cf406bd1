#include "settings/text_checks.h"

#include <gtest/gtest.h>

#include <utility>

#include "tools/terminal/terminal_text.h"

namespace quarry::tool {
namespace {

// All findings, each as "LINE:COLUMN+LENGTH rule".
std::string Findings(const std::string& text) {
  std::string all;
  for (const settings::Finding& f : settings::CheckText(text)) {
    all += (all.empty() ? "" : ", ") + std::to_string(f.line) + ':' + std::to_string(f.column) +
           '+' + std::to_string(f.length) + ' ' + f.rule->name;
  }
  return all;
}

TEST(CheckText, FindsEveryErrorAndWarningInOrder) {
  const std::pair<const char*, const char*> cases[] = {
      {"#c\n[a]\nx = 1\n ;d\n\ny=#fff\nz=a#b\nt=a# b\ne=\n[b]", ""},
      {"x=1\n  y \n=\n[b]\nx=0\n", "1:1+3 no-section"},
      {"[abc\nx=1\n  [a\n", "1:1+4 header-not-closed, 3:3+2 header-not-closed"},
      {"[]\nx=2\n\t[]x]\n", "1:2+1 section-name-empty, 3:3+1 section-name-empty"},
      {"[a] ; x\n[a]]\n", "1:5+3 text-after-header, 2:4+1 text-after-header"},
      {"[a]\nthreads 4\n  x\r\n", "2:1+9 no-equals, 3:3+1 no-equals"},
      {"[a]\n=1\n\t= 1\n", "2:1+1 option-name-empty, 3:2+1 option-name-empty"},
      {"\xEF\xBB\xBF[a]\nx=1\n\xEF\xBB\xBF#\n", "1:1+3 byte-order-mark, 3:1+3 byte-order-mark"},
      {"[b]\nx=1\n\xEF\xBB\xBF[a]\nx=2\n", "3:1+3 byte-order-mark"},
      {"\xEF\xBB\xBFx=1\ny=1\n", "1:1+3 byte-order-mark, 2:1+3 no-section"},
      {"[ a] x\n[b\t]\n",
       "1:2+2 blanks-in-section-name, 1:6+1 text-after-header, 2:2+2 blanks-in-section-name"},
      {"[a]\r\n#c\r\nx=1\r\ny=2\r\n", "3:4+1 carriage-return"},
      {"[a]\nx = 1 # c\ny=1\t;c\nz= # c\n",
       "2:7+3 comment-in-value, 3:5+2 comment-in-value, 4:4+3 comment-in-value"},
      {"[a]\nx=a ;b ;c\ny=a ; b;\nz=a;b;c #d\n", "3:5+4 comment-in-value, 4:9+2 comment-in-value"},
      {"[a]\nx=# 1 # c\r\n", "2:3+8 comment-in-value, 2:10+1 carriage-return"},
      {"[a]\nx=1\n[b]\nx=1\n[A]\nX=2\nx=3\n", "6:1+1 option-again, 7:1+1 option-again"},
      {"#c\n[a]\n[b]\n[A]\n[a]\n", "4:2+1 section-again"},
      {"[a]\na=\"b # c\"\r\nb='\\''\nc=\"\"\nd=\"\" \"\"\ne='a\\'\nf=\"\ng=\"a'\nh=(a)\n",
       "2:3+7 quotes-in-value, 2:10+1 carriage-return, 3:3+4 quotes-in-value,"
       " 4:3+2 quotes-in-value"},
      {"[a]\na:b=1\nm o: x = 2\nm:\tx=\n", "3:4+1 colon-in-name, 4:2+1 colon-in-name"},
      {"[a]\nx=1 \\\r\ny=\\ \n#c\n\tc: z=3\n w=4\nw=\n w=\n\n  v=6\n",
       "2:6+1 carriage-return, 3:1+1 no-continuation, 5:2+4 no-continuation, 6:2+1 no-continuation,"
       " 7:1+1 option-again, 8:2+1 no-continuation, 8:2+1 option-again"},
      {"[a]\n x \\\n =1\n  y=2\n x y\n  z=1\n[b]\n  z=1\n",
       "2:2+3 no-equals, 3:2+1 option-name-empty, 4:3+1 no-continuation, 5:2+3 no-equals"},
      {"[a]\nx=1\n  #c\n;d\n\nbad", "6:1+3 no-equals"},
  };
  for (const auto& [text, findings] : cases) EXPECT_EQ(Findings(text), findings) << text;
}

TEST(ExcerptOf, QuotesTheLineAndMarksIt) {
  struct Case {
    const char* name;
    std::string line;
    std::size_t offset, length;
    std::string shown, marks;
  };
  const std::string many(200, 'x');
  std::string accents;
  while (accents.size() < 600) accents += "\xCC\x81";
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
      {"tabs within", "ab\tcd", 0, 5, "ab\tcd", "^~"},
      {"controls", "\x7f[m\x07x", 4, 1, "\\x7f[m\\x07x", "          ^"},
      {"broken UTF-8", "\xC3(\xFF\xED\xA0\x80", 1, 1, "\\xc3(\\xff\\xed\\xa0\\x80", "    ^"},
      {"overlong and too large", "\xC0\xAF\xE0\x80\xAF\xF4\x90\x80\x80", 0, 1,
       "\\xc0\\xaf\\xe0\\x80\\xaf\\xf4\\x90\\x80\\x80", "^~~~"},
      {"hidden controls", "\xC2\x9B\xE2\x80\xAE\xE2\x80\x8F\xE2\x81\xA6\xE2\x81\xA9.", 14, 1,
       "\\xc2\\x9b\\xe2\\x80\\xae\\xe2\\x80\\x8f\\xe2\\x81\\xa6\\xe2\\x81\\xa9.",
       std::string(56, ' ') + '^'},
      {"invisible", "\xC2\xAD\xD8\x9C\xE2\x80\x8B\xE3\x85\xA4\xF3\xA0\x80\x81\xE3\x85\xA3", 0, 1,
       "\\xc2\\xad\\xd8\\x9c\\xe2\\x80\\x8b\\xe3\\x85\\xa4\\xf3\\xa0\\x80\\x81\xE3\x85\xA3",
       "^~~~"},
      {"past the end", "ab", 2, 0, "ab", "  ^"},
      // Of 65 columns, 60 are for the line.
      {"fits", std::string(60, 'x'), 59, 1, std::string(60, 'x'), std::string(59, ' ') + '^'},
      {"long", many + "!" + many, 200, 9,
       "..." + std::string(21, 'x') + "!" + std::string(32, 'x') + "...",
       std::string(24, ' ') + "^~~~~~~~~"},
      {"long from its begin", "xxx!" + many, 3, 1, "xxx!" + std::string(53, 'x') + "...", "   ^"},
      {"long at its end", many, 199, 9, "..." + std::string(54, 'x'), std::string(56, ' ') + '^'},
      {"marked after its end", std::string(60, 'x'), 60, 1, "..." + std::string(53, 'x'),
       std::string(56, ' ') + '^'},
      {"long with wide ones", std::string(200, 1) + std::string(20, 'y') + "!\x1b" + many, 220, 1,
       "..." + std::string(20, 'y') + "!\\x1b" + std::string(29, 'x') + "...",
       std::string(23, ' ') + '^'},
      {"long with tabs", "!\t\t\t\t\t\t" + std::string(16, 'x') + "\xE4\xB8\xAD", 0, 1,
       "!\t\t\t\t\t\t" + std::string(14, 'x') + "...", "^"},
      {"many without width", '!' + accents, 0, 1, '!' + accents.substr(0, 226) + "...", "^"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Excerpt excerpt = ExcerptOf(c.line, c.offset, c.length, {5, 65});
    EXPECT_EQ(excerpt.line, c.shown);
    EXPECT_EQ(excerpt.marks, c.marks);
  }
}

}  // namespace
}  // namespace quarry::tool
