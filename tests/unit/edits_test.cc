#include <gtest/gtest.h>

#include <tuple>

#include "settings/line_edits.h"
#include "settings/unified_diff.h"
#include "settings/verified_edit.h"
#include "tests/support/support.h"

namespace quarry::settings {
namespace {

std::string Set(const std::string& text, const std::vector<Setting>& settings) {
  Document document("f", std::string(text));
  return WithSettings(&document, settings).text;
}

std::string Unset(const std::string& text, bool with_comment) {
  Document document("f", std::string(text));
  return WithoutOption(&document, "a", "o", with_comment).text;
}

std::string UnsetSection(const std::string& text, bool with_comment) {
  Document document("f", std::string(text));
  return WithoutSection(&document, "a", with_comment).text;
}

TEST(LineEdits, SetsAndLeavesTheRest) {
  // A text, the settings, and the text afterwards.
  const std::tuple<const char*, std::vector<Setting>, const char*> cases[] = {
      // The value's stretch alone.
      {"[a]\n\t x =\t1 2  \n", {{"A", "X", "3"}}, "[a]\n\t x =\t3  \n"},
      // Settings in any order.
      {"[a]\nx=1\n[b]\ny=1\n", {{"b", "y", "2"}, {"a", "x", "3"}}, "[a]\nx=3\n[b]\ny=2\n"},
      // To empty and to blanks.
      {"[a]\nx = 1 \ny=1\r\nz ==b\nu = 1 \n",
       {{"a", "x", ""}, {"a", "y", ""}, {"a", "z", ""}, {"a", "u", "\t "}},
       "[a]\nx =\ny=\nz =\nu =\t \n"},
      // From empty and from blanks.
      {"[a]\nx =\ny=\nz =\t \n",
       {{"a", "x", "1"}, {"a", "y", "1"}, {"a", "z", "1"}},
       "[a]\nx = 1\ny=1\nz = 1\n"},
      // A new option after the last part.
      {"[a]\n x =1\n#c\n\n[b]\n[A] \ny=2\n#d\n\n[b]\n",
       {{"a", "z", "3"}},
       "[a]\n x =1\n#c\n\n[b]\n[A] \ny=2\nz=3\n#d\n\n[b]\n"},
      // A new option after a header looks like the first one.
      {"[a]\n  x =1\n[b]\n#c\n", {{"b", "z", "3"}}, "[a]\n  x =1\n[b]\n  z =3\n#c\n"},
      // A new option after one without a value.
      {"[a]\nx =\n[b]\ny=\r\n",
       {{"a", "z", "3"}, {"b", "z", ""}},
       "[a]\nx =\nz = 3\n[b]\ny=\r\nz=\n"},
      // A new option in a last part without options.
      {"[a]\nx=1\n[b]\n[a]\n#c\n", {{"a", "z", "3"}}, "[a]\nx=1\n[b]\n[a]\nz=3\n#c\n"},
      // A new option after a mixed indentation.
      {"[a]\n \r x=1\n", {{"a", "z", "3"}}, "[a]\n \r x=1\nz=3\n"},
      // Two new sections, in their order.
      {"",
       {{"b", "z", "3"}, {"A", "x", "1"}, {"B", "y", "2"}},
       "[b]\nz = 3\ny = 2\n\n[A]\nx = 1\n"},
      // A new section after a blank line.
      {"[a]\n \t\n", {{"b", "z", "3"}}, "[a]\n \t\n[b]\nz = 3\n"},
  };
  for (const auto& [text, settings, edited] : cases) EXPECT_EQ(Set(text, settings), edited);
}

TEST(LineEdits, RemovesEveryLineOfAnOption) {
  // A text, without the option, and without its comment too; "=" when that is the same.
  const std::tuple<const char*, std::string, std::string> cases[] = {
      // Comments directly above.
      {"[a]\n;b\n\n #c\n;d\no=1\n#e\n", "[a]\n;b\n\n #c\n;d\n#e\n", "[a]\n;b\n\n#e\n"},
      // A comment above a header.
      {"#c\n[a]\no=1\n", "#c\n[a]\n", "="},
      // The line feed at the end stays missing.
      {"[a]\nx=0\no=1\no=2", "[a]\nx=0", "="},
      // But not that of a blank line.
      {"[a]\nx=0\n\no=1", "[a]\nx=0\n\n", "="},
  };
  for (const auto& [text, without, without_comment] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(Unset(text, false), without);
    EXPECT_EQ(Unset(text, true), without_comment == "=" ? without : without_comment);
  }
}

TEST(LineEdits, RemovesEveryPartOfASection) {
  // A text, without the section, and without its comments too; "=" when that is the same.
  const std::tuple<const char*, std::string, std::string> cases[] = {
      // Comments inside, above and after; an empty part.
      {"#b\n[b]\nx=1\n#a\n[a]\n\n#o\no=1\n#c\n[c]\n#a2\n[A]\n#end\n",
       "#b\n[b]\nx=1\n#a\n#c\n[c]\n#a2\n#end\n", "#b\n[b]\nx=1\n#c\n[c]\n#end\n"},
      // One of the blank lines around it, of several parts in a row too.
      {"[b]\n\n[a]\no=1\n\n[a]\n\n[a]\n\n[c]\n", "[b]\n\n[c]\n", "="},
      {"[b]\n\n\n[a]\n\n\n[c]\n", "[b]\n\n\n\n[c]\n", "="},
      // At the begin and at the end.
      {"[a]\n[a]\n\n[b]\nx=1\n\n[a]\n\n[a]\no=1", "[b]\nx=1", "="},
      // Nothing else.
      {"\n#c\n[a]\no=1", "\n#c", ""},
      {"\n[a]\no=1\n\n", "\n", "="},
  };
  for (const auto& [text, without, without_comment] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(UnsetSection(text, false), without);
    EXPECT_EQ(UnsetSection(text, true), without_comment == "=" ? without : without_comment);
  }
}

TEST(IsSameModel, SeesWhatProgramsSee) {
  // A text, whether it is the same, and whether it is but for comments.
  const std::tuple<std::string, bool, bool> cases[] = {
      // Other lines.
      {"#c\n[A]\n\n y=2 \n #d\nx =1\n[b]\n", true, true},
      // An option more.
      {"#c\n[A]\n#d\nx=1\ny=2\n[b]\nx=1\n", false, false},
      // Another name.
      {"#c\n[A]\n#d\nX=1\ny=2\n[b]\n", false, false},
      // Another order.
      {"[b]\n#c\n[A]\n#d\nx=1\ny=2\n", false, false},
      // Another value.
      {"#c\n[A]\n#d\nx=1\ny=3\n[b]\n", false, false},
      // A comment of an option.
      {"#c\n[A]\n#d\nx=1\n#\ny=2\n[b]\n", false, true},
      // The comment of a section.
      {"#c\n#c\n[A]\n#d\nx=1\ny=2\n[b]\n", false, true},
      // The comment of a section beyond the old ones.
      {"#c\n[A]\n#d\nx=1\ny=2\n#\n[b]\n", true, true},
  };
  for (const auto& [text, same, same_but_comments] : cases) {
    SCOPED_TRACE(text);
    Document wanted("f", "#c\n[A]\n#d\nx=1\ny=2\n[b]\n"), found("f", std::string(text));
    EXPECT_EQ(IsSameModel(&wanted, &found, Comments::kCompared, 1), same);
    EXPECT_EQ(IsSameModel(&wanted, &found, Comments::kIgnored, 1), same_but_comments);
  }
}

TEST(UnifiedDiff, ShowsWhatPatchTakes) {
  const std::tuple<const char*, TextEdit, const char*> cases[] = {
      // All lines.
      {"1\n2\n", {{1, 2, {}}}, "@@ -1,2 +0,0 @@\n-1\n-2\n"},
      // Three lines around.
      {"1\n2\n3\n4\n5\n6\n7\n8\n9\n",
       {{5, 1, {"a", "b"}}},
       "@@ -2,7 +2,8 @@\n 2\n 3\n 4\n-5\n+a\n+b\n 6\n 7\n 8\n"},
      // A gap of six lines is shown.
      {"1\n2\n3\n4\n5\n6\n7\n8\n",
       {{1, 1, {"a"}}, {8, 1, {}}},
       "@@ -1,8 +1,7 @@\n-1\n+a\n 2\n 3\n 4\n 5\n 6\n 7\n-8\n"},
      // A gap of seven is not.
      {"1\n2\n3\n4\n5\n6\n7\n8\n9\n",
       {{1, 0, {"a"}}, {8, 1, {}}},
       "@@ -1,3 +1,4 @@\n+a\n 1\n 2\n 3\n@@ -5,5 +6,4 @@\n 5\n 6\n 7\n-8\n 9\n"},
      // No line feed at the end.
      {"1\n2", {{1, 1, {}}}, "@@ -1,2 +1 @@\n-1\n 2\n\\\n"},
      // Another end.
      {"1\n2", {{2, 1, {"a"}}, {3, 0, {"b"}}}, "@@ -1,2 +1,3 @@\n 1\n-2\n\\\n+a\n+b\n\\\n"},
      // A longer end.
      {"1\n2", {{3, 0, {"a"}}}, "@@ -1,2 +1,3 @@\n 1\n-2\n\\\n+2\n+a\n\\\n"},
      // A shorter end.
      {"1\n2", {{2, 1, {}}}, "@@ -1,2 +1 @@\n-1\n-2\n\\\n+1\n\\\n"},
      // An end after a blank line.
      {"1\n\n2", {{3, 1, {}}}, "@@ -1,3 +1,2 @@\n 1\n \n-2\n\\\n"},
      // The same end.
      {"1\n2", {{1, 1, {"a"}}}, "@@ -1,2 +1,2 @@\n-1\n+a\n 2\n\\\n"},
      // Two lines.
      {"1\n2\n", {{1, 1, {"a"}}, {2, 1, {"b"}}}, "@@ -1,2 +1,2 @@\n-1\n-2\n+a\n+b\n"},
  };
  for (const auto& [text, edit, hunks] : cases) {
    const std::string shown = ReplaceAll(hunks, "\\\n", "\\ No newline at end of file\n");
    EXPECT_EQ(UnifiedDiff("f", text, edit), "--- f\n+++ f\n" + shown);
  }
}

}  // namespace
}  // namespace quarry::settings
