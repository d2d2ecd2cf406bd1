#include "settings/snapshot.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>
#include <tuple>

#include "settings/value_reader.h"
#include "tests/support/support.h"

namespace quarry::settings {
namespace {

using std::chrono::nanoseconds;

Snapshot SnapshotOf(const std::string& text) {
  std::vector<Problem> problems;
  return Snapshot::Parse("f", text, &problems).value();
}

std::string Messages(const std::vector<Problem>& problems) {
  std::string all;
  for (const Problem& one : problems) {
    all += (one.is_warning ? "warning: " : "") + one.Message() + " // " + one.hint + " // " +
           one.rule + ' ' + std::to_string(one.length) + '\n';
  }
  return all;
}

TEST(Snapshot, HasTheTextsSections) {
  const Snapshot snapshot = SnapshotOf(
      "#a\n  ;b\n[B]\nx = 1\n[A]\n# c\n# d\n\n#e\nY=2\n[b]\nz=\nX=3\n#f\nx=4\n[c]\n#end\n");
  std::string all;
  for (const Section& section : snapshot.sections()) {
    all += std::to_string(section.line) + " [" + std::string(section.name) + "] (" +
           std::string(section.comment) + ")\n";
    for (const Option& option : section.options) {
      all += std::to_string(option.line) + ' ' + std::string(option.name) + '=' +
             std::string(option.value) + " (" + std::string(option.comment) + ")\n";
    }
  }
  EXPECT_EQ(all, "3 [B] ()\n15 x=4 (#f)\n12 z= ()\n5 [A] ()\n10 Y=2 (# c\n# d\n#e)\n16 [c] ()\n");
  EXPECT_EQ(snapshot.Find("a", "y")->value, "2");
  EXPECT_EQ(snapshot.Find("a", "x"), nullptr);
  EXPECT_EQ(snapshot.Find("d", "x"), nullptr);
}

TEST(Snapshot, HasNoSectionThatDiffersInTheCaseBitAlone) {
  const Snapshot snapshot = SnapshotOf("[\xC9]\n[@]");
  EXPECT_EQ(snapshot.FindSection("\xE9"), nullptr);
  EXPECT_EQ(snapshot.FindSection("`"), nullptr);
}

TEST(Snapshot, FindsSectionsWithAPrefix) {
  const Snapshot snapshot = SnapshotOf("[Vol a]\n[Vol]\n[x]\n[vOL B]\n[Volume]\n");
  std::string names;
  for (const Section* section : snapshot.SectionsWithPrefix("vol ")) names += section->name;
  EXPECT_EQ(names, "Vol avOL B");
}

// Small sections are searched in another way than large ones, and continued ones in a third.
TEST(Snapshot, FindsOptionsInSectionsOfAnySize) {
  const std::string eight = "a=1\nb=2\nc=3\nd=4\ne=5\nf=6\nabcdefghij`=7\nabcdefghij@=8\n";
  const std::pair<const char*, std::string> cases[] = {
      {"small", "[s]\n" + eight + "A=9\n"},
      {"large", "[s]\n" + eight + "i=0\nA=9\n"},
      {"small, continued", "[s]\n" + eight + "[t]\na=0\n[S]\nA=9\n"},
      {"small, in two parts", "[s]\na=1\n[t]\nx=0\ny=0\n[S]\n" + eight + "A=9\n"},
      {"small, continued after another", "[s]\n" + eight + "[t]\na=0\n[u]\n[T]\n[S]\nA=9\n"},
      {"grown by its continuation", "[s]\n" + eight + "[t]\na=0\n[S]\ni=0\nA=9\n"},
  };
  for (const auto& [name, text] : cases) {
    SCOPED_TRACE(name);
    const Snapshot snapshot = SnapshotOf(text);
    EXPECT_EQ(snapshot.Find("S", "a")->value, "9");
    EXPECT_EQ(snapshot.Find("S", "ABCDEFGHIJ`")->value, "7");  // differs in the case bit
    EXPECT_EQ(snapshot.Find("s", "ABCDEFGHIJ@")->value, "8");
    EXPECT_EQ(snapshot.Find("s", "j"), nullptr);
    EXPECT_EQ(snapshot.sections().begin()->options.size(), snapshot.Find("s", "i") ? 9U : 8U);
  }
}

TEST(Snapshot, ReportsEveryProblemAndQuotesNone) {
  std::vector<Problem> problems;
  EXPECT_FALSE(Snapshot::Parse("f", "[a]\npassword hunter2\n[b\nx=1 # c\n", &problems));
  EXPECT_EQ(
      Messages(problems),
      "f:2:1: option line without \"=\" // write \"NAME = VALUE\", or put \"#\" first to make "
      "it a comment // no-equals 16\n"
      "f:3:1: section header without \"]\" // add \"]\" after the section name // "
      "header-not-closed 2\n");
  problems.clear();
  const TempFolder folder;
  const std::string file = folder.Path("f");
  folder.Write("f", "[a]\nx=1 # c\n");
  EXPECT_TRUE(Snapshot::Load(file, &problems, Snapshot::Warnings::kReported));
  EXPECT_EQ(Messages(problems),
            "warning: " + file +
                ":2:5: this is part of the value // put the comment on a line of its own // "
                "comment-in-value 3\n");
  problems.clear();
  EXPECT_FALSE(Snapshot::Load("/nowhere/f", &problems));
  EXPECT_FALSE(Snapshot::Load("/", &problems));
  EXPECT_EQ(Messages(problems),
            "/nowhere/f: No such file or directory //  //  0\n"
            "/: Is a directory // name the files in it //  0\n");
}

TEST(Snapshot, MayBeReadByManyThreads) {
  const Snapshot snapshot = SnapshotOf("[a]\nx=1\n[b]\ny=2\n");
  std::vector<std::thread> threads(8);
  for (std::thread& thread : threads) {
    thread = std::thread([copy = snapshot] {
      for (int n = 0; n < 1000; ++n) EXPECT_EQ(copy.Find("B", "Y")->value, "2");
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(ValueReader, ReadsValues) {
  // A value, and what each kind of value makes of it; "-" where it is wrong.
  const std::tuple<std::string, const char*, const char*, const char*, const char*> cases[] = {
      {"1", "true", "1", "1", "-"},
      {"OFF", "false", "-", "-", "-"},
      {"yes", "true", "-", "-", "-"},
      {"tru", "-", "-", "-", "-"},
      {"0", "false", "0", "0", "0"},
      {"-0", "-", "0", "-", "-"},
      {"+1", "-", "-", "-", "-"},
      {"007", "-", "7", "7", "-"},
      {"1 2", "-", "-", "-", "-"},
      {"0x1F", "-", "-", "-", "-"},
      {"1.5", "-", "-", "-", "-"},
      {"1e3", "-", "-", "-", "-"},
      {"-9223372036854775808", "-", "-9223372036854775808", "-", "-"},
      {"9223372036854775807", "-", "9223372036854775807", "9223372036854775807", "-"},
      {"9223372036854775808", "-", "-", "9223372036854775808", "-"},
      {"18446744073709551616", "-", "-", "-", "-"},
      {"64MiB", "-", "-", "67108864", "-"},
      {"10 kb", "-", "-", "10000", "-"},
      {"1k", "-", "-", "-", "-"},
      {"15 EiB", "-", "-", "17293822569102704640", "-"},
      {"16EiB", "-", "-", "-", "-"},
      {"-1B", "-", "-", "-", "-"},
      {"250ms", "-", "-", "-", "250000000"},
      {"2\th", "-", "-", "-", "7200000000000"},
      {"1 min 30 s", "-", "-", "-", "-"},
      {"9223372036s", "-", "-", "-", "9223372036000000000"},
      {"9223372037s", "-", "-", "-", "-"},
      {"0 d", "-", "-", "-", "0"},
      {"", "-", "-", "-", "-"},
      {" ", "-", "-", "-", "-"},
      {std::string("on\0", 3), "-", "-", "-", "-"},
      {std::string("1s\0", 3), "-", "-", "-", "-"},
  };
  for (const auto& [value, boolean, integer, bytes, duration] : cases) {
    SCOPED_TRACE(value);
    ValueReader reader(SnapshotOf("[a]\nx=" + value + '\n'));
    auto shown = [&reader, problems = std::size_t{0}](const std::string& text) mutable {
      const bool is_right = reader.problems().size() == problems;
      problems = reader.problems().size();
      return is_right ? text : "-";
    };
    EXPECT_EQ(shown(reader.Boolean("A", "X", false) ? "true" : "false"), boolean);
    EXPECT_EQ(shown(std::to_string(reader.Integer("a", "x"))), integer);
    EXPECT_EQ(shown(std::to_string(reader.Bytes("a", "x", 7))), bytes);
    EXPECT_EQ(shown(std::to_string(reader.Duration("a", "x", nanoseconds(7)).count())), duration);
  }
}

TEST(ValueReader, KnowsEveryUnit) {
  std::string bytes;
  for (const char* const unit :
       {"B", "kB", "MB", "GB", "TB", "PB", "EB", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"}) {
    ValueReader reader(SnapshotOf(std::string("[a]\nx=2") + unit));
    bytes += std::to_string(reader.Bytes("a", "x")) + ' ';
  }
  EXPECT_EQ(bytes,
            "2 2000 2000000 2000000000 2000000000000 2000000000000000 2000000000000000000 2048 "
            "2097152 2147483648 2199023255552 2251799813685248 2305843009213693952 ");
  std::string durations;
  for (const char* const unit : {"ns", "us", "ms", "s", "min", "h", "d"}) {
    ValueReader reader(SnapshotOf(std::string("[a]\nx=2") + unit));
    durations += std::to_string(reader.Duration("a", "x").count()) + ' ';
  }
  EXPECT_EQ(durations, "2 2000 2000000 2000000000 120000000000 7200000000000 172800000000000 ");
}

TEST(ValueReader, SaysWhatIsWrongAndWhere) {
  const Snapshot snapshot = SnapshotOf(
      "[Server]\nthreds = 4\n  port = 99999\nport2 =\n[Other]\nz=1\nl=a, \t,b\n"
      "k= a ,b\nn=1\r\ne=\nm=a,\nb=16 EiB\n[Sewer]\n");
  ValueReader reader(snapshot);
  EXPECT_EQ(reader.Integer("server", "threads"), 0);
  EXPECT_EQ(reader.Integer("server", "PORT", 80, {1, 65535}), 80);
  EXPECT_EQ(reader.Integer("SERVER", "port2", 81), 81);
  EXPECT_EQ(reader.Text("servr", "x"), "");
  EXPECT_EQ(reader.Bytes("none", "of these"), 0U);
  EXPECT_EQ(reader.Text("other", "y", "fallback"), "fallback");
  EXPECT_EQ(reader.Bytes("none", "b", 5), 5U);
  EXPECT_TRUE(reader.List("other", "l").empty());
  EXPECT_EQ(reader.List("other", "k"), (std::vector<std::string_view>{"a", "b"}));
  EXPECT_FALSE(reader.Boolean("other", "n"));
  EXPECT_TRUE(reader.List("other", "e").empty());
  EXPECT_TRUE(reader.List("other", "m").empty());
  EXPECT_EQ(reader.Bytes("other", "b"), 0U);
  EXPECT_EQ(reader.Bytes("other", "e", 1), 1U);
  reader.Refuse("other", "z", "this is odd", "make it even");
  reader.Refuse("server", "mode", "there is no mode");
  reader.ReportUnknownOptions();
  EXPECT_EQ(
      Messages(reader.problems()),
      "f:1:2: there is no option \"threads\" in section \"server\" // did you mean \"threds\"? // "
      "setting-absent 6\n"
      "f:3:10: the number is out of range // write a number from 1 to 65535 // value 5\n"
      "f:4:8: the value is not a whole number // write a number from -9223372036854775808 to "
      "9223372036854775807 // value 0\n"
      "f: there is no option \"x\" in section \"servr\" // did you mean \"Server\"? // "
      "setting-absent 0\n"
      "f: there is no option \"of these\" in section \"none\" // add \"of these = ...\" to "
      "section [none] // setting-absent 0\n"
      "f:7:3: a part of the list is empty // write one comma between two parts // value 6\n"
      "f:9:3: the value is not a boolean: it ends in a carriage return // end lines in line feeds "
      "alone, as sed -i 's/\\r$//' does // value 2\n"
      "f:11:3: a part of the list is empty // write one comma between two parts // value 2\n"
      "f:12:3: the number of bytes is too large // write a whole number, with a unit such as kB, "
      "MB, GB, KiB, MiB or GiB if it is not of bytes // value 6\n"
      "f:10:3: the value is not a number of bytes // write a whole number, with a unit such as kB, "
      "MB, GB, KiB, MiB or GiB if it is not of bytes // value 0\n"
      "f:6:3: this is odd // make it even // value 1\n"
      "f:1:2: there is no mode //  // value 6\n"
      "warning: f:2:1: option \"threds\" in section \"Server\" is not known // did you mean "
      "\"threads\"? // unknown-setting 6\n");
}

}  // namespace
}  // namespace quarry::settings
