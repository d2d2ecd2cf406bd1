#include "settings/file_replacement.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <sstream>
#include <thread>
#include <utility>

#include "settings/error.h"
#include "tests/support/support.h"

namespace {

std::atomic<mode_t> locked_mode;       // of the file that was locked last
std::function<void()> before_locking;  // is called once

std::string failing;  // the next call of this name fails
int failure = 0;      // with this error

template <typename... Arguments>
int Call(const char* name, long number, Arguments... arguments) {
  if (failing != name) return static_cast<int>(syscall(number, arguments...));
  failing.clear();
  errno = failure;
  return -1;
}

}  // namespace

// In place of the system's, to fail, and to look at a new file before anything is in it.
extern "C" {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"  // by struct flock
int flock(int fd, int operation) noexcept {
  struct stat status {};
  fstat(fd, &status);
  locked_mode = status.st_mode;
  EXPECT_EQ(fcntl(fd, F_GETFD), FD_CLOEXEC);
  if (before_locking) std::exchange(before_locking, nullptr)();
  return Call("flock", SYS_flock, fd, operation);
}
#pragma GCC diagnostic pop
int fchmod(int fd, mode_t mode) noexcept { return Call("fchmod", SYS_fchmod, fd, mode); }
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): a keyword there
int renameat2(int oldfd, const char* old, int newfd, const char* name, unsigned flags) noexcept {
  return Call("renameat2", SYS_renameat2, oldfd, old, newfd, name, flags);
}
ssize_t read(int fd, void* buf, size_t nbytes) { return Call("read", SYS_read, fd, buf, nbytes); }
ssize_t write(int fd, const void* buf, size_t n) { return Call("write", SYS_write, fd, buf, n); }
}

namespace quarry::settings {
namespace {

using std::string_literals::operator""s;

using Options = FileReplacement::Options;
const Options kMayCreate = {kUsualMode};

// An access control list that lets user 1234 read.
const std::string kAccessList =
    "\2\0\0\0\1\0\6\0\xFF\xFF\xFF\xFF\2\0\4\0\xD2\4\0\0\4\0\0\0\xFF\xFF\xFF\xFF\x10\0\4\0\xFF\xFF\xFF\xFF\x20\0\0\0\xFF\xFF\xFF\xFF"s;

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
  static bool IsSignalBlocked() {
    sigset_t blocked;
    return pthread_sigmask(SIG_BLOCK, nullptr, &blocked), sigismember(&blocked, SIGTERM) == 1;
  }
  // An edit with something done in the middle of it; the message when it fails. Sets hint_.
  std::string Edit(
      const std::string& name, const std::string& text, const Options& options = {},
      const std::function<void()>& meanwhile = [] {}) {
    std::string message;
    hint_.clear();
    try {
      FileReplacement file(Path(name), options);
      meanwhile();
      file.Replace(text);
    } catch (const Error& error) {
      message = ReplaceAll(error.message, Path(""), "");
      hint_ = error.hint;
    }
    EXPECT_FALSE(IsSignalBlocked());
    return message;
  }

  std::string hint_;
};

TEST_F(FileReplacementTest, KeepsWhatTheFileIs) {
  Write("f", "old");
  std::filesystem::create_directory(Path("links"));
  symlink("../f", Path("links/l").c_str());
  Write(".f.quarry-new", "left by a killed edit");
  // Not every file system has these.
  setxattr(Path("f").c_str(), "user.origin", "hall B", 6, 0);
  setxattr(Path("f").c_str(), "system.posix_acl_access", kAccessList.data(), kAccessList.size(), 0);
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
  if (setxattr(Path("").c_str(), "system.posix_acl_default", kAccessList.data(), kAccessList.size(),
               0) != 0) {
    GTEST_SKIP() << "this file system has no access control lists";
  }
  EXPECT_EQ(Edit("f", "new"), "");
  EXPECT_EQ(Describe("f"), before);
}

// Nobody may read a copy who may not read its source.
TEST_F(FileReplacementTest, CopiesNoMoreAccess) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files to any group";
  struct Case {
    gid_t folder_group;   // which the copy gets
    const char* list_of;  // what has an access control list
    const char* list;
    const char* copy_mode;
  };
  const Case cases[] = {{0, "", "", "100444"},
                        {2345, "", "", "100400"},
                        {0, "d/source", "system.posix_acl_access", "100600"},
                        {0, "d", "system.posix_acl_default", "100400"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.list + std::to_string(c.folder_group));
    std::filesystem::remove_all(Path("d"));
    std::filesystem::create_directory(Path("d"));
    EXPECT_EQ(chown(Path("d").c_str(), 0, c.folder_group) + chmod(Path("d").c_str(), 02755), 0);
    Write("d/source", "text");
    EXPECT_EQ(chown(Path("d/source").c_str(), 0, 0) + chmod(Path("d/source").c_str(), 0464), 0);
    setxattr(Path(c.list_of).c_str(), c.list, kAccessList.data(), kAccessList.size(), 0);
    FileReplacement copy(Path("d/copy"), {kPrivateMode});
    const platform::FileDescriptor source(open(Path("d/source").c_str(), O_RDONLY | O_CLOEXEC));
    copy.CopyAccessOf(source.get(), 022);
    copy.Replace("text");
    EXPECT_EQ(Describe("d/copy").substr(0, 6), c.copy_mode);
  }
}

TEST_F(FileReplacementTest, RefusesWhatTheCallerMayNot) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  for (const char* name : {"readable", "writable", "own"}) Write(name, "old");
  EXPECT_EQ(chown(Path("own").c_str(), 1234, 2345), 0);
  chmod(Path("readable").c_str(), 0644);
  chmod(Path("writable").c_str(), 0666);
  chmod(Path("").c_str(), 0777);
  ASSERT_EQ(seteuid(1234), 0);
  EXPECT_EQ(FileReplacement(Path("readable"), {std::nullopt, true}).text(), "old");
  EXPECT_EQ(Edit("readable", "new"), "cannot open readable for writing: Permission denied");
  EXPECT_EQ(Edit("writable", "new"),
            "cannot keep the owner (user ID 0) of writable: Operation not permitted");
  EXPECT_EQ(hint_, "edit it as root");
  EXPECT_EQ(Edit("own", "new"),
            "cannot keep the group (group ID 2345) of own: Operation not permitted");
  ASSERT_EQ(seteuid(0), 0);
  Write(".own.quarry-new", "");
  chmod(Path("").c_str(), 01777);
  ASSERT_EQ(seteuid(1234), 0);
  EXPECT_EQ(Edit("own", "new"),
            "cannot remove .own.quarry-new beside own: Operation not permitted");
  EXPECT_EQ(hint_.substr(0, hint_.find(';')), "another user put it there");
  ASSERT_EQ(seteuid(0), 0);
  unlink(Path(".own.quarry-new").c_str());
  chmod(Path("").c_str(), 0755);
  ASSERT_EQ(seteuid(1234), 0);
  EXPECT_EQ(Edit("writable", "new"),
            "cannot create .writable.quarry-new beside writable: Permission denied");
  EXPECT_EQ(Edit("absent", "new", kMayCreate),
            "cannot create .absent.quarry-new beside absent: Permission denied");
  ASSERT_EQ(seteuid(0), 0);
  EXPECT_EQ(Read("readable") + Read("writable") + Read("own"), "oldoldold");
  EXPECT_EQ(CountFiles(), 3U);
}

// In a folder such as /tmp, which the kernel may protect or not.
TEST_F(FileReplacementTest, FollowsNoPlantedLink) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give links away";
  struct Case {
    mode_t folder_mode;
    uid_t link_owner;  // the folder's is 2345
    bool is_followed;
  };
  const Case cases[] = {{01777, 1234, false},
                        {01777, 2345, true},
                        {01777, 0, true},
                        {0777, 1234, true},
                        {01775, 1234, true}};
  std::filesystem::create_directory(Path("d"));
  EXPECT_EQ(chown(Path("d").c_str(), 2345, 0), 0);
  for (const Case& c : cases) {
    for (const std::string path : {"d/l", "d/l/f"}) {
      SCOPED_TRACE(path + " of " + std::to_string(c.link_owner));
      Write("f", "old");
      chmod(Path("d").c_str(), c.folder_mode);
      unlink(Path("d/l").c_str());
      symlink(path == "d/l" ? "../f" : "..", Path("d/l").c_str());
      EXPECT_EQ(lchown(Path("d/l").c_str(), c.link_owner, 0), 0);
      EXPECT_EQ(Edit(path, "new"), c.is_followed
                                       ? ""
                                       : "cannot open " + path +
                                             ": its link \"l\" belongs to user ID 1234 and "
                                             "is in a folder that everyone can write to");
      EXPECT_EQ(Read("f"), c.is_followed ? "new" : "old");
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
  const auto plant = [&] {
    unlink(Path(".f.quarry-new").c_str()), Write(".f.quarry-new", "other");
  };
  unlink(Path("f").c_str());
  EXPECT_EQ(Edit("f", "new", kMayCreate, plant), other);
  EXPECT_EQ(CountFiles(), 0U);
  before_locking = plant;  // as an edit that takes ours for an abandoned one
  EXPECT_EQ(Edit("f", "new", kMayCreate), "");
  EXPECT_EQ(Read("f"), "new");
  EXPECT_EQ(CountFiles(), 1U);
}

TEST_F(FileReplacementTest, WaitsForAnotherEditAndGivesUp) {
  Write("f", "old");
  int notices = 0;
  Options patient, hasty;
  patient.on_wait = [&] { ++notices; };
  hasty.max_wait = std::chrono::milliseconds(50);
  for (const char* locked : {"f", ".f.quarry-new"}) {
    Write(locked, "old");
    FileReplacement first(Path(locked), {});
    EXPECT_EQ(Edit("f", "newer", hasty), "another edit of f is running");
  }
  unlink(Path(".f.quarry-new").c_str());
  int replacements = 0;
  const std::function<void()> replace = [&] {
    Write("g", "old"), rename(Path("g").c_str(), Path("f").c_str());
    if (++replacements < 10000) before_locking = replace;
  };
  before_locking = replace;
  EXPECT_EQ(Edit("f", "newer", hasty), "another edit of f is running");
  before_locking = nullptr;
  failure = EWOULDBLOCK;
  failing = "flock";
  EXPECT_EQ(Edit("f", "new", patient), "");
  // Only waiting counts.
  const auto work = [&] { std::this_thread::sleep_for(2 * hasty.max_wait), failing = "flock"; };
  EXPECT_EQ(Edit("f", "newer", hasty, work), "");
  EXPECT_EQ(notices, 0);
  EXPECT_EQ(Read("f"), "newer");
}

TEST_F(FileReplacementTest, MeetsFailuresOfTheSystem) {
  const std::string locks = "an edit needs a file system with file locks (flock)";
  const std::string modes = "an edit needs a file system with modes";
  const std::string mounts =
      "a file that is mounted alone, as into a container, cannot be replaced";
  struct Case {
    std::string call;
    int error;
    const char* file;  // "f" exists
    std::string message, hint;
  };
  const Case cases[] = {
      {"flock", EOPNOTSUPP, "f", "cannot lock f: Operation not supported", locks},
      {"flock", ENOLCK, "g", "cannot lock g: No locks available", locks},
      {"flock", EIO, "f", "cannot lock f: Input/output error", ""},
      {"fchmod", EPERM, "f", "cannot keep the mode of f: Operation not permitted", modes},
      {"renameat2", EBUSY, "f", "cannot save f: Device or resource busy", mounts},
      {"renameat2", EINVAL, "f", "", ""},
      {"read", EINTR, "f", "", ""},
      {"read", EAGAIN, "f", "", ""},
      {"write", EINTR, "f", "", ""},
      {"write", EAGAIN, "f", "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.call + ' ' + std::to_string(c.error));
    Write("f", "old");
    failing = c.call;
    failure = c.error;
    EXPECT_EQ(Edit(c.file, "new", kMayCreate), c.message);
    EXPECT_EQ(failing + hint_.substr(0, hint_.find(';')), c.hint);
    EXPECT_EQ(Read("f"), c.message.empty() ? "new" : "old");
    EXPECT_EQ(CountFiles(), 1U);
  }
}

// The second of two edits waits for the first and finds what it made.
TEST_F(FileReplacementTest, MakesAFileOnce) {
  const auto add = [this](const std::string& text) {
    FileReplacement edit(Path("f"), kMayCreate);
    EXPECT_EQ(IsSignalBlocked(), !edit.exists());
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
