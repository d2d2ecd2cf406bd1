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

#include "settings/error.h"
#include "tests/support/support.h"

namespace {

std::atomic<mode_t> locked_mode;       // of the file that was locked last
std::function<void()> before_locking;  // called before each lock

struct Fault {
  std::string call;
  int error;
  int count;  // so many calls fail with that error
};
Fault fault;

bool Fails(const char* call) {
  if (fault.count == 0 || fault.call != call) return false;
  --fault.count;
  errno = fault.error;
  return true;
}

template <typename... Arguments>
int Call(const char* name, long number, Arguments... arguments) {
  return Fails(name) ? -1 : static_cast<int>(syscall(number, arguments...));
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
  if (before_locking) before_locking();
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
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    return sigismember(&blocked, SIGTERM) == 1;
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
    const char* name;
    gid_t folder_group, source_group;
    mode_t source_mode;
    const char* list_of;  // what has an access control list, and which
    const char* list;
    mode_t copy_mode;
  };
  const Case cases[] = {
      {"the mode", 0, 0, 0664, "", "", 0644},
      {"another group", 0, 2345, 0644, "", "", 0600},
      {"the folder's group", 2345, 0, 0644, "", "", 0600},
      {"both of a group", 2345, 2345, 0440, "", "", 0440},
      {"the source's list", 0, 0, 0644, "source", "system.posix_acl_access", 0600},
      {"the folder's list", 0, 0, 0644, "", "system.posix_acl_default", 0600},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::filesystem::remove_all(Path("d"));
    std::filesystem::create_directory(Path("d"));
    Write("d/source", "text");
    EXPECT_EQ(chown(Path("d").c_str(), 0, c.folder_group), 0);
    EXPECT_EQ(chown(Path("d/source").c_str(), 0, c.source_group), 0);
    chmod(Path("d").c_str(), 02755);
    chmod(Path("d/source").c_str(), c.source_mode);
    if (*c.list != '\0' && setxattr(Path("d/"s + c.list_of).c_str(), c.list, kAccessList.data(),
                                    kAccessList.size(), 0) != 0) {
      continue;  // not every file system has these
    }
    FileReplacement copy(Path("d/copy"), {kPrivateMode});
    const platform::FileDescriptor source(open(Path("d/source").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(locked_mode, static_cast<mode_t>(S_IFREG | 0600));
    copy.CopyAccessOf(source.get(), 022);
    copy.Replace("text");
    EXPECT_EQ(std::filesystem::status(Path("d/copy")).permissions(),
              static_cast<std::filesystem::perms>(c.copy_mode));
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
  chmod(Path("").c_str(), 0777);
  ASSERT_EQ(seteuid(0), 0);
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
  hasty.max_wait = std::chrono::milliseconds(50);
  {
    FileReplacement first(Path("f"), {});
    EXPECT_EQ(Edit("f", "newer", hasty), "another edit of f is running");
  }
  Write(".f.quarry-new", "");
  {
    FileReplacement first(Path(".f.quarry-new"), {});
    EXPECT_EQ(Edit("f", "newer", hasty), "another edit of f is running");
  }
  unlink(Path(".f.quarry-new").c_str());
  int replacements = 0;
  before_locking = [&] {
    if (++replacements < 10000) Write("g", "old"), rename(Path("g").c_str(), Path("f").c_str());
  };
  EXPECT_EQ(Edit("f", "newer", hasty), "another edit of f is running");
  before_locking = nullptr;
  // Only waiting counts.
  const auto work = [&] {
    std::this_thread::sleep_for(2 * hasty.max_wait);
    fault = {"flock", EWOULDBLOCK, 1};
  };
  EXPECT_EQ(Edit("f", "newer", hasty, work), "");
  fault = {"flock", EWOULDBLOCK, 1};
  EXPECT_EQ(Edit("f", "new", patient), "");
  EXPECT_EQ(notices, 0);
  EXPECT_EQ(Read("f"), "new");
}

TEST_F(FileReplacementTest, MeetsFailuresOfTheSystem) {
  const std::string locks =
      "an edit needs a file system with file locks (flock); edit a copy on "
      "one, and copy it back";
  struct Case {
    Fault fault;
    const char* file;  // "f" exists
    std::string message, hint;
  };
  const Case cases[] = {
      {{"flock", EOPNOTSUPP, 1}, "f", "cannot lock f: Operation not supported", locks},
      {{"flock", ENOLCK, 1}, "g", "cannot lock g: No locks available", locks},
      {{"flock", EIO, 1}, "f", "cannot lock f: Input/output error", ""},
      {{"fchmod", EPERM, 1},
       "f",
       "cannot keep the mode of f: Operation not permitted",
       "an edit needs a file system with modes; edit a copy on one, and copy it back"},
      {{"renameat2", EBUSY, 1},
       "f",
       "cannot save f: Device or resource busy",
       "a file that is mounted alone, as into a container, cannot be replaced; edit it where it "
       "comes from, or mount its folder"},
      {{"renameat2", EINVAL, 1}, "f", "", ""},
      {{"read", EINTR, 2}, "f", "", ""},
      {{"read", EAGAIN, 2}, "f", "", ""},
      {{"write", EINTR, 2}, "f", "", ""},
      {{"write", EAGAIN, 2}, "f", "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.fault.call + ' ' + std::to_string(c.fault.error));
    Write("f", "old");
    fault = c.fault;
    EXPECT_EQ(Edit(c.file, "new", kMayCreate), c.message);
    EXPECT_EQ(fault.count, 0);
    EXPECT_EQ(hint_, c.hint);
    EXPECT_EQ(Read("f"), c.message.empty() ? "new" : "old");
    EXPECT_EQ(CountFiles(), 1U);
  }
}

// Another edit takes our temporary file for an abandoned one before we can lock it.
TEST_F(FileReplacementTest, LosesItsTemporaryFile) {
  Write("f", "old");
  int locks = 0;
  before_locking = [&] {
    if (++locks != 2) return;  // the first one is that of f
    unlink(Path(".f.quarry-new").c_str());
    Write(".f.quarry-new", "other");
  };
  EXPECT_EQ(Edit("f", "new"), "");
  before_locking = nullptr;
  EXPECT_EQ(Read("f"), "new");
  EXPECT_EQ(CountFiles(), 1U);
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
