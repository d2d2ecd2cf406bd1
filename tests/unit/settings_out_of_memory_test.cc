// Every allocation of each operation on a text or its file fails in turn.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <tuple>

#include "settings/settings.h"
#include "tests/support/support.h"
#include "tests/support/test_allocator.h"

namespace quarry::settings {
namespace {

using Result = std::optional<Snapshot>;
using Problems = std::vector<Problem>;

// "T" means the long text.
const std::string& kT = kLongText;
std::string Long(const std::string& text) { return ReplaceAll(text, "T", kT); }
std::string Short(const std::string& text) { return ReplaceAll(text, kT, "T"); }

// What is wrong, and the text.
std::string Render(const Result& result, const Problems& problems, const std::string& folder) {
  std::string all;
  for (const Problem& one : problems) all += one.Message() + " // " + one.hint + '\n';
  return Short(ReplaceAll(all + (result ? result->text() : "nothing"), folder, ""));
}

// The names and the texts of all files.
std::set<std::string> Files(const TempFolder& folder) {
  std::set<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path(""))) {
    const std::string name = entry.path().filename();
    files.insert(Short(name + ":\n" + folder.Read(name)));
  }
  return files;
}

// Returns nothing when a value is not as it should be.
Result ReadValues(const Snapshot& snapshot, Problems* problems) {
  ValueReader reader(snapshot);
  const bool is_right = reader.Text(kT, "x") == "1, 2" && reader.List(kT, "x").size() == 2 &&
                        reader.Integer(kT, "x", 5, {1, 9}) == 5 && !reader.Boolean(kT, kT + '2') &&
                        reader.Bytes("U", "y", 6) == 6;
  reader.Refuse("U", "x", kT, kT);
  reader.ReportUnknownOptions();
  *problems = reader.problems();
  return is_right ? Result(snapshot) : std::nullopt;
}

TEST(OutOfMemory, IsTheOnlyProblemAndLeavesTheFiles) {
  const TempFolder folder;
  const std::string file = folder.Path(kT), new_file = folder.Path("new " + kT);
  const std::string text = "[T]\n#T\nT=T\nx=1, 2\n[U]\nx=1\n[V T]\ny=T\n";
  const std::string changed = "[T]\n#T\nT=3\nx=1, 2\nT y=T\n[U]\n\n[W T]\nT=T\n";
  const std::string created = "[T]\nT = 3\nT y = T\n\n[W T]\nT = T\n";
  const std::vector<Change> changes = {Change::Set(kT, kT, "3"), Change::Set(kT, kT + " y", kT),
                                       Change::Remove("u", "x"), Change::RemoveSection("V " + kT),
                                       Change::Set("W " + kT, kT, kT)};
  const std::vector<Change> refused = {Change::Set(kT, kT, kT + '\n')};
  SaveOptions creating;
  creating.new_mode = 0600;
  Problems problems;
  const Snapshot snapshot = Snapshot::Parse(kT, Long(text), &problems).value();

  const std::set<std::string> no_memory = {"T: Cannot allocate memory // \nnothing",
                                           "cannot read T: Cannot allocate memory // \nnothing"};
  // What is done; what is reported, returned and left when it succeeds, as it may when an
  // allocation fails that is not needed, such as that of a sort.
  const std::set<std::string> files = {"T:\n" + text};
  const std::tuple<std::function<Result()>, std::string, std::set<std::string>> cases[] = {
      {[&] { return Snapshot::Parse(kT, Long("[T\n[T]\nT\n"), &problems); },
       "T:1:1: section header without \"]\" // add \"]\" after the section name\n"
       "T:3:1: option line without \"=\" // write \"NAME = VALUE\", or put \"#\" first to make it "
       "a comment\nnothing",
       files},
      {[&] {
         const std::string odd = Long("[T]\nT=T # T\n");
         return Snapshot::Parse(kT, odd, &problems, Snapshot::Warnings::kReported);
       },
       "T:2:85: this is part of the value // put the comment on a line of its own\n[T]\nT=T # T\n",
       files},
      {[&] { return Snapshot::Load(file, &problems); }, text, files},
      {[&] { return ReadValues(snapshot, &problems); },
       "T:4:3: the value is not a whole number // write a number from 1 to 9\n"
       "T:1:2: there is no option \"T2\" in section \"T\" // did you mean \"T\"?\n"
       "T:6:3: T // T\n"
       "T:3:1: option \"T\" in section \"T\" is not known // did you mean \"T2\"?\n" +
           text,
       files},
      {[&] { return Apply(snapshot, changes, &problems); }, changed, files},
      {[&] { return Save(file, changes, &problems); }, changed, {"T:\n" + changed}},
      {[&] { return Save(new_file, changes, &problems, creating); },
       created,
       {"T:\n" + text, "new T:\n" + created}},
      {[&] { return Save(new_file, refused, &problems, creating); },
       "new T: the value would not be read back: it holds a line feed, where a line ends // "
       "\nnothing",
       files},
  };
  for (const auto& [run, ending, files_left] : cases) {
    SCOPED_TRACE(ending);
    Result result;
    const auto work = [&, &run = run] { return result = run(), 0; };
    const auto prepare = [&] {
      result.reset();
      problems = Problems();
      std::filesystem::remove(new_file);
      if (Files(folder) != files) folder.Write(kT, Long(text));
    };
    const auto check = [&, &ending = ending, &files_left = files_left](int status) {
      const std::string got = Render(result, problems, folder.Path(""));
      const bool failed = status == kThrown || no_memory.count(got) == 1;
      if (!failed) {
        EXPECT_EQ(got, ending);
      }
      EXPECT_EQ(Files(folder), failed ? files : files_left);
    };
    EXPECT_GT(FailEachAllocation(prepare, work, check), 0);
    // The last run, in which none failed.
    EXPECT_EQ(Render(result, problems, folder.Path("")), ending);
    EXPECT_EQ(Files(folder), files_left);
  }
}

}  // namespace
}  // namespace quarry::settings
