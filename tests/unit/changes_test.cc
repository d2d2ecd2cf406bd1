#include "settings/changes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <thread>
#include <tuple>

#include "settings/file_replacement.h"
#include "tests/support/support.h"

namespace quarry::settings {
namespace {

using Changes = std::vector<Change>;
constexpr auto Set = &Change::Set;
constexpr auto Remove = &Change::Remove;
constexpr auto RemoveSection = &Change::RemoveSection;

std::string After(const std::string& text, const Changes& changes, std::string* problem) {
  std::vector<Problem> problems;
  const Snapshot snapshot = Snapshot::Parse("f", text, &problems).value();
  const auto changed = Apply(snapshot, changes, &problems);
  *problem = problems.empty() ? "" : problems.front().rule + ": " + problems.front().Message();
  return changed ? changed->text() : "";
}

TEST(Changes, AreAppliedAllOrNone) {
  // A text, the changes, and the text afterwards or the problem.
  const std::tuple<const char*, Changes, const char*> cases[] = {
      {"[a]\n x = 1 \n#c\ny=2", {Set("A", "X", "3"), Remove("a", "y")}, "[a]\n x = 3 \n#c"},
      {"[a]\nx=1\n", {}, "[a]\nx=1\n"},
      {"[a]\nx=1\nx=2\n", {Remove("a", "x"), Set("b", "y", "1")}, "[a]\n\n[b]\ny = 1\n"},
      // In their order.
      {"[a]\nx=1\n",
       {Set("a", "w", "0"), Set("a", "y", "2"), Set("a", "Z", "1"), Set("A", "Y", "3")},
       "[a]\nx=1\nw=0\ny=3\nZ=1\n"},
      {"[a]\nx=1\nz=1\n", {Remove("a", "x"), Set("a", "X", "2")}, "[a]\nz=1\nX=2\n"},
      {"[a]\nx=1\n", {Set("a", "x", "2"), Remove("a", "X")}, "[a]\n"},
      {"[a]\nx=1\n\n#c\n[b]\ny=1\n",
       {RemoveSection("B"), Set("b", "z", "2")},
       "[a]\nx=1\n\n#c\n\n[b]\nz=2\n"},
      // What is absent may be removed.
      {"[a]\nx=1\n", {Remove("b", "x"), Remove("a", ""), RemoveSection("")}, "[a]\nx=1\n"},
      // What would not be read back is refused.
      {"[a]\n",
       {Set("a", "y", "1"), Set("a", "x", "1\n[CR]\nlogin=me")},
       "change-refused: f: the value would not be read back: it holds a line feed, where a line "
       "ends"},
      {"[a]\n",
       {Set("a]", "x", "1"), RemoveSection("a]")},
       "change-refused: f: section name \"a]\" would not be read back: it holds a \"]\", where a "
       "name ends"},
      {"[a]\n",
       {Set("a", "#x", "1")},
       "change-refused: f: option name \"#x\" would not be read back: its line would be a comment"},
  };
  for (const auto& [text, changes, result] : cases) {
    SCOPED_TRACE(text);
    std::string problem;
    const std::string after = After(text, changes, &problem);
    EXPECT_EQ(problem.empty() ? after : problem, result);
  }
}

TEST(Changes, AreSavedByManyThreads) {
  const TempFolder folder;
  const std::string file = folder.Path("f");
  folder.Write("f", "# kept\n[a]\n");
  std::vector<std::thread> threads(8);
  int number = 0;
  for (std::thread& thread : threads) {
    thread = std::thread([&file, option = "x" + std::to_string(++number)] {
      SaveOptions options;
      options.max_wait = std::chrono::milliseconds::max();
      for (int n = 1; n <= 20; ++n) {
        std::vector<Problem> problems;
        EXPECT_TRUE(Save(file, {Set("a", option, std::to_string(n))}, &problems, options));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::vector<Problem> problems;
  const auto saved = Snapshot::Load(file, &problems);
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->text().substr(0, 10), "# kept\n[a]");
  EXPECT_EQ(saved->options("a").size(), threads.size());
  for (const Option& option : saved->options("a")) {
    EXPECT_EQ(option.value, "20");
  }
}

TEST(Changes, AreNotSavedWhereSomethingIsWrong) {
  const TempFolder folder;
  folder.Write("invalid", "[a]\nx\n[b\n");
  std::vector<Problem> problems;
  EXPECT_FALSE(Save(folder.Path("invalid"), {Set("a", "x", "1")}, &problems));
  ASSERT_EQ(problems.size(), 2U);
  EXPECT_EQ(problems[1].Message(), folder.Path("invalid") + ":3:1: section header without \"]\"");
  EXPECT_EQ(folder.Read("invalid"), "[a]\nx\n[b\n");
  problems.clear();
  const std::string none = folder.Path("none");
  EXPECT_FALSE(Save(none, {Set("a", "x", "1")}, &problems));
  EXPECT_EQ(problems.front().Message(), "cannot open " + none + ": No such file or directory");
  SaveOptions options;
  options.new_mode = 0600;
  EXPECT_TRUE(Save(none, {Set("a", "x", "1")}, &problems, options));
  EXPECT_EQ(folder.Read("none"), "[a]\nx = 1\n");
  EXPECT_EQ(std::filesystem::status(none).permissions(), std::filesystem::perms(0600));
  problems.clear();
  const std::string cut = none + std::string("\0.old", 5);  // the system would find "none"
  EXPECT_FALSE(Save(cut, {Set("a", "x", "2")}, &problems));
  EXPECT_FALSE(Snapshot::Load(cut, &problems));
  ASSERT_EQ(problems.size(), 2U);
  EXPECT_EQ(problems[0].Message(), "cannot open " + cut + ": Invalid argument");
  EXPECT_EQ(problems[0].hint, "the name of a file holds no NUL byte");
  EXPECT_EQ(problems[1].Message(), cut + ": Invalid argument");
  EXPECT_EQ(folder.Read("none"), "[a]\nx = 1\n");
}

TEST(Changes, ReplaceAnAbandonedTemporaryFileWithoutWaiting) {
  const TempFolder folder;
  folder.Write("f", "[a]\n");
  folder.Write(".f.quarry-new", "[a]\nx");
  SaveOptions options;
  options.max_wait = std::chrono::milliseconds(0);
  std::vector<Problem> problems;
  EXPECT_TRUE(Save(folder.Path("f"), {Set("a", "x", "1")}, &problems, options));
  EXPECT_EQ(folder.Read("f"), "[a]\nx = 1\n");
}

TEST(Changes, WaitAsLongAsIsAllowed) {
  const TempFolder folder;
  const std::string file = folder.Path("f");
  folder.Write("f", "[a]\n");
  std::optional<FileReplacement> other(std::in_place, file, FileReplacement::Options());
  SaveOptions options;
  options.max_wait = std::chrono::milliseconds(0);
  options.on_wait = [&other] { other.reset(); };  // after a second
  std::vector<Problem> problems;
  EXPECT_FALSE(Save(file, {Set("a", "x", "1")}, &problems, options));
  EXPECT_TRUE(other);
  options.max_wait = std::chrono::seconds(10);
  EXPECT_TRUE(Save(file, {Set("a", "x", "1")}, &problems, options));
}

}  // namespace
}  // namespace quarry::settings
