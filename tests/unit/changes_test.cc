#include "settings/changes.h"

#include <gtest/gtest.h>

#include <thread>
#include <tuple>

#include "tests/support/support.h"

namespace quarry::settings {
namespace {

using Changes = std::vector<Change>;

std::string After(const std::string& text, const Changes& changes, std::string* problem) {
  std::vector<Problem> problems;
  const Snapshot snapshot = Snapshot::Parse("f", text, &problems).value();
  const auto changed = Apply(snapshot, changes, &problems);
  *problem = problems.empty() ? "" : problems.front().Message();
  return changed ? changed->text() : "";
}

TEST(Changes, AreAppliedAllOrNone) {
  // A text, the changes, and the text afterwards or the problem.
  const std::tuple<const char*, Changes, const char*> cases[] = {
      {"[a]\n x = 1 \n#c\ny=2", {{"A", "X", "3"}, {"a", "y", {}}}, "[a]\n x = 3 \n#c"},
      {"[a]\nx=1\n", {}, "[a]\nx=1\n"},
      {"[a]\nx=1\nx=2\n", {{"a", "x", {}}, {"b", "y", "1"}}, "[a]\n\n[b]\ny=1\n"},
      // The last change of an option counts.
      {"[a]\nx=1\n", {{"a", "x", {}}, {"a", "X", "2"}}, "[a]\nx=2\n"},
      {"[a]\nx=1\n", {{"a", "x", "2"}, {"a", "X", {}}}, "[a]\n"},
      // What is absent may be removed.
      {"[a]\nx=1\n", {{"b", "x", {}}, {"a", "", {}}}, "[a]\nx=1\n"},
      // What would not be read back is refused.
      {"[a]\n",
       {{"a", "y", "1"}, {"a", "x", "1\n[CR]\nlogin=me"}},
       "f: the value would not be read back: it holds a line feed, where a line ends"},
      {"[a]\n",
       {{"a]", "x", "1"}},
       "f: section name \"a]\" would not be read back: it holds a \"]\", where a name ends"},
      {"[a]\n",
       {{"a", "#x", "1"}},
       "f: option name \"#x\" would not be read back: its line would be a comment"},
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
      for (int n = 1; n <= 20; ++n) {
        std::vector<Problem> problems;
        EXPECT_TRUE(Save(file, {{"a", option, std::to_string(n)}}, &problems));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::vector<Problem> problems;
  const auto saved = Snapshot::Load(file, &problems);
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->text().substr(0, 10), "# kept\n[a]");
  EXPECT_EQ(saved->options(*saved->FindSection("a")).size(), threads.size());
  for (const Option& option : saved->options(*saved->FindSection("a"))) {
    EXPECT_EQ(option.value, "20");
  }
}

TEST(Changes, AreNotSavedWhereSomethingIsWrong) {
  const TempFolder folder;
  folder.Write("invalid", "[a]\nx\n[b\n");
  std::vector<Problem> problems;
  EXPECT_FALSE(Save(folder.Path("invalid"), {{"a", "x", "1"}}, &problems));
  EXPECT_EQ(problems.size(), 2U);
  EXPECT_EQ(folder.Read("invalid"), "[a]\nx\n[b\n");
  problems.clear();
  const std::string none = folder.Path("none");
  EXPECT_FALSE(Save(none, {{"a", "x", "1"}}, &problems));
  EXPECT_EQ(problems.front().Message(), "cannot open " + none + ": No such file or directory");
}

}  // namespace
}  // namespace quarry::settings
