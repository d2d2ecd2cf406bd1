#include "settings/file_replacement.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>
#include <thread>

#include "settings/error.h"
#include "tests/support/support.h"

namespace {
std::atomic<mode_t> locked_mode;  // of the file that was locked last
std::atomic<int> busy_locks = 0;  // that come before the next one is free
}  // namespace

// In place of the system's, to look at a new file before anything is in it, and to be busy.
extern "C" int flock(int file, int operation) noexcept {
  struct stat status {};
  fstat(file, &status);
  locked_mode = status.st_mode;
  if (busy_locks > 0) {
    --busy_locks;
    errno = EWOULDBLOCK;
    return -1;
  }
  return static_cast<int>(syscall(SYS_flock, file, operation));
}

namespace quarry::settings {
namespace {

using std::string_literals::operator""s;

using Options = FileReplacement::Options;
const Options kMayCreate = {kUsualMode};

class FileReplacementTest : public testing::Test, protected TempFolder {
 protected:
  // Type, mode, owner, group, and the attributes that edits keep.
  std::string Describe(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(lstat(Path(name).c_str(), &status), 0);
    std::ostringstream text;
    text << std::oct << status.st_mode << ' ' << status.st_uid << ':' << status.st_gid;
    for (const char* attribute : {"user.origin", "system.posix_acl_access"}) {
      char value[64];
      const ssize_t size = lgetxattr(Path(name).c_str(), attribute, value, sizeof value);
      text << ' ' << std::string(value, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    }
    return text.str();
  }
  std::size_t CountFiles() const {
    const std::filesystem::directory_iterator files(Path(""));
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }
  // An edit with something done in the middle of it; the message when it fails.
  std::string Edit(
      const std::string& name, const std::string& text, const Options& options = {},
      const std::function<void()>& meanwhile = [] {}) const {
    try {
      FileReplacement file(Path(name), options);
      meanwhile();
      file.Replace(text);
      return "";
    } catch (const Error& error) {
      return ReplaceAll(error.message, Path(""), "");
    }
  }
};

TEST_F(FileReplacementTest, KeepsWhatTheFileIs) {
  Write("f", "old");
  std::filesystem::create_directory(Path("links"));
  symlink("../f", Path("links/l").c_str());
  Write(".f.quarry-new", "left by a killed edit");
  // Not every file system has these. The list gives user 1234 access.
  const std::string acl =
      "\2\0\0\0\1\0\6\0\xFF\xFF\xFF\xFF\2\0\4\0\xD2\4\0\0\4\0\0\0\xFF\xFF\xFF\xFF\x10\0\4\0\xFF\xFF\xFF\xFF\x20\0\0\0\xFF\xFF\xFF\xFF"s;
  setxattr(Path("f").c_str(), "user.origin", "hall B", 6, 0);
  setxattr(Path("f").c_str(), "system.posix_acl_access", acl.data(), acl.size(), 0);
  if (geteuid() == 0) {
    EXPECT_EQ(chown(Path("f").c_str(), static_cast<uid_t>(-1), 2345), 0);
  }
  chmod(Path("f").c_str(), 06640);
  const std::string before = Describe("f"), link = Describe("links/l");

  EXPECT_EQ(Edit("links/l", "new"), "");
  EXPECT_EQ(locked_mode, static_cast<mode_t>(S_IFREG | 0600)) << "others could read the new file";
  EXPECT_EQ(Read("f"), "new");
  EXPECT_EQ(Describe("f"), before);
  EXPECT_EQ(Describe("links/l"), link);
  EXPECT_EQ(CountFiles(), 2U);
}

// What the folder gives to new files does not come to old ones.
TEST_F(FileReplacementTest, AddsNoAccess) {
  Write("f", "old");
  chmod(Path("f").c_str(), 0600);
  const std::string before = Describe("f");
  const std::string acl =
      "\2\0\0\0\1\0\7\0\xFF\xFF\xFF\xFF\2\0\7\0\xD2\4\0\0\4\0\7\0\xFF\xFF\xFF\xFF\x10\0\7\0\xFF\xFF\xFF\xFF\x20\0\7\0\xFF\xFF\xFF\xFF"s;
  if (setxattr(Path("").c_str(), "system.posix_acl_default", acl.data(), acl.size(), 0) != 0) {
    GTEST_SKIP() << "this file system has no access control lists";
  }
  EXPECT_EQ(Edit("f", "new"), "");
  EXPECT_EQ(Describe("f"), before);
}

TEST_F(FileReplacementTest, RefusesWhatTheCallerMayNot) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  for (const char* name : {"readable", "writable"}) Write(name, "old");
  chmod(Path("readable").c_str(), 0644);
  chmod(Path("writable").c_str(), 0666);
  chmod(Path("").c_str(), 0777);
  ASSERT_EQ(seteuid(1234), 0);
  EXPECT_EQ(FileReplacement(Path("readable"), {std::nullopt, true}).text(), "old");
  EXPECT_EQ(Edit("readable", "new"), "cannot open readable for writing: Permission denied");
  EXPECT_EQ(Edit("writable", "new"), "cannot keep the owner of writable: Operation not permitted");
  chmod(Path("").c_str(), 0777);
  ASSERT_EQ(seteuid(0), 0);
  chmod(Path("").c_str(), 0755);
  ASSERT_EQ(seteuid(1234), 0);
  EXPECT_EQ(Edit("writable", "new"),
            "cannot create .writable.quarry-new beside writable: Permission denied");
  EXPECT_EQ(Edit("absent", "new", kMayCreate),
            "cannot create .absent.quarry-new beside absent: Permission denied");
  ASSERT_EQ(seteuid(0), 0);
  EXPECT_EQ(Read("readable") + Read("writable"), "oldold");
  EXPECT_EQ(CountFiles(), 2U);
}

// In a folder such as /tmp, which the kernel may protect or not.
TEST_F(FileReplacementTest, FollowsNoPlantedLink) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give links away";
  struct Case {
    mode_t folder_mode;
    uid_t folder_owner, link_owner;
    bool is_followed;
  };
  const Case cases[] = {{01777, 2345, 1234, false},
                        {01777, 2345, 2345, true},
                        {01777, 2345, 0, true},
                        {0777, 2345, 1234, true},
                        {01775, 2345, 1234, true}};
  std::filesystem::create_directory(Path("shared"));
  Write("f", "old");
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.folder_mode) + " of " + std::to_string(c.folder_owner) +
                 ", link of " + std::to_string(c.link_owner));
    chmod(Path("shared").c_str(), c.folder_mode);
    EXPECT_EQ(chown(Path("shared").c_str(), c.folder_owner, 0), 0);
    for (const char* path : {"shared/l", "shared/l/f"}) {
      const std::string name = Path("shared/l");
      unlink(name.c_str());
      symlink(path == "shared/l"s ? "../f" : "..", name.c_str());
      EXPECT_EQ(lchown(name.c_str(), c.link_owner, 0), 0);
      const std::string text = path + std::to_string(&c - cases);
      const std::string refusal =
          "cannot open "s + path +
          ": its link \"l\" belongs to user ID 1234 and is in a folder that everyone can write to";
      EXPECT_EQ(Edit(path, text), c.is_followed ? "" : refusal);
      EXPECT_EQ(Read("f") == text, c.is_followed);
    }
  }
}

TEST_F(FileReplacementTest, OverwritesNoOtherProgramsWork) {
  const std::string other = "another program changed f during this edit";
  struct Case {
    const char* name;
    std::function<void()> meanwhile;
    std::string text;
  };
  const Case cases[] = {
      {"in place", [&] { Write("f", "other"); }, "other"},
      {"replaced", [&] { Write("g", "old"), rename(Path("g").c_str(), Path("f").c_str()); }, "old"},
      {"removed", [&] { unlink(Path("f").c_str()); }, ""},
      {"made private", [&] { chmod(Path("f").c_str(), 0600); }, "old"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    unlink(Path("f").c_str());
    Write("f", "old");
    EXPECT_EQ(Edit("f", "new", {}, c.meanwhile), other);
    EXPECT_EQ(Read("f"), c.text);
  }
  unlink(Path("f").c_str());
  EXPECT_EQ(Edit("f", "new", kMayCreate, [&] { Write("f", "other"); }), other);
  EXPECT_EQ(Read("f"), "other");
  EXPECT_EQ(CountFiles(), 1U);
}

TEST_F(FileReplacementTest, WaitsForAnotherEditAndGivesUp) {
  Write("f", "old");
  int notices = 0;
  Options patient, hasty;
  patient.on_wait = [&] { ++notices; };
  hasty.max_wait = std::chrono::milliseconds(20);
  {
    FileReplacement first(Path("f"), {});
    EXPECT_EQ(Edit("f", "newer", hasty), "another edit of f is running");
  }
  busy_locks = 1;
  EXPECT_EQ(Edit("f", "new", patient), "");
  EXPECT_EQ(notices, 0);
  EXPECT_EQ(Read("f"), "new");
}

// The second of two edits waits for the first and finds what it made.
TEST_F(FileReplacementTest, MakesAFileOnce) {
  const auto add = [this](const std::string& text) {
    FileReplacement edit(Path("f"), kMayCreate);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    edit.Replace(edit.text() + text);
  };
  for (const char* text : {"aa", "aaaa"}) {
    std::thread other(add, "a");
    add("a");
    other.join();
    EXPECT_EQ(Read("f"), text);
  }
  EXPECT_EQ(CountFiles(), 1U);
}

}  // namespace
}  // namespace quarry::settings
