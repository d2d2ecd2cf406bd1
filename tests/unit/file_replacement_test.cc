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
#include <tuple>
#include <utility>

#include "settings/error.h"
#include "tests/support/failing_calls.h"
#include "tests/support/support.h"
#include "tools/terminal/signal_block.h"

namespace {

std::atomic<mode_t> locked_mode;       // of the file that was locked last
std::function<void()> before_locking;  // is called once

}  // namespace

// In place of the C library's, to look at a new file before anything is in it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"  // by struct flock
extern "C" int flock(int fd, int operation) noexcept {
  struct stat status {};
  fstat(fd, &status);
  locked_mode = status.st_mode;
  EXPECT_EQ(fcntl(fd, F_GETFD), FD_CLOEXEC);
  if (before_locking) std::exchange(before_locking, nullptr)();
  return Fails("flock") ? -1 : static_cast<int>(syscall(SYS_flock, fd, operation));
}
#pragma GCC diagnostic pop

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
  // As the program edits: with signals blocked while there is a temporary file.
  static Options Guarded(Options options) {
    options.guard = [] { return std::make_shared<tool::ScopedSignalBlock>(); };
    return options;
  }
  // An edit with something done in the middle of it; the message when it fails. Sets hint_.
  std::string Edit(
      const std::string& name, const std::string& text, const Options& options = {},
      const std::function<void()>& meanwhile = [] {}) {
    std::string message;
    hint_.clear();
    try {
      FileReplacement file(Path(name), Guarded(options));
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
  // The folder's group, which the copy gets; what has an access control list, and which; the
  // copy's mode.
  const std::tuple<gid_t, const char*, const char*, const char*> cases[] = {
      {0, "", "", "100444"},
      {2345, "", "", "100400"},
      {0, "d/source", "system.posix_acl_access", "100600"},
      {0, "d", "system.posix_acl_default", "100400"},
  };
  for (const auto& [folder_group, list_of, list, copy_mode] : cases) {
    SCOPED_TRACE(list + std::to_string(folder_group));
    std::filesystem::remove_all(Path("d"));
    std::filesystem::create_directory(Path("d"));
    EXPECT_EQ(chown(Path("d").c_str(), 0, folder_group) + chmod(Path("d").c_str(), 02755), 0);
    Write("d/source", "text");
    EXPECT_EQ(chown(Path("d/source").c_str(), 0, 0) + chmod(Path("d/source").c_str(), 0464), 0);
    setxattr(Path(list_of).c_str(), list, kAccessList.data(), kAccessList.size(), 0);
    FileReplacement copy(Path("d/copy"), {kPrivateMode});
    const platform::FileDescriptor source(open(Path("d/source").c_str(), O_RDONLY | O_CLOEXEC));
    copy.CopyAccessOf(source.get(), 022);
    copy.Replace("text");
    EXPECT_EQ(Describe("d/copy").substr(0, 6), copy_mode);
  }
}

TEST_F(FileReplacementTest, RefusesWhatTheCallerMayNot) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  const char* const writable_folder =
      "an edit replaces the file by a new one, for which its folder must be writable";
  // The folder's mode, the file, the message and the hint.
  const std::tuple<mode_t, const char*, const char*, const char*> cases[] = {
      {01777, "own", "cannot remove .own.quarry-new beside own: Operation not permitted",
       "another user put it there"},
      {0777, "own", "cannot keep the group (group ID 2345) of own: Operation not permitted",
       "edit it as root"},
      {0777, "readable", "cannot open readable for writing: Permission denied", ""},
      {0777, "writable", "cannot keep the owner (user ID 0) of writable: Operation not permitted",
       "edit it as root"},
      {0755, "writable", "cannot create .writable.quarry-new beside writable: Permission denied",
       writable_folder},
      {0755, "absent", "cannot create .absent.quarry-new beside absent: Permission denied",
       writable_folder},
  };
  for (const char* name : {"readable", "writable", "own", ".own.quarry-new"}) Write(name, "old");
  EXPECT_EQ(chown(Path("own").c_str(), 1234, 2345), 0);
  chmod(Path("readable").c_str(), 0644);
  chmod(Path("writable").c_str(), 0666);
  for (const auto& [folder_mode, name, message, hint] : cases) {
    chmod(Path("").c_str(), folder_mode);
    ASSERT_EQ(seteuid(1234), 0);
    EXPECT_EQ(Edit(name, "new", kMayCreate), message);
    EXPECT_EQ(hint_.substr(0, hint_.find(';')), hint);
    EXPECT_EQ(FileReplacement(Path("readable"), {std::nullopt, true}).text(), "old");
    ASSERT_EQ(seteuid(0), 0);
  }
  EXPECT_EQ(Read("readable") + Read("writable") + Read("own"), "oldoldold");
  EXPECT_EQ(CountFiles(), 3U);
}

// In a folder such as /tmp, which the kernel may protect or not.
TEST_F(FileReplacementTest, FollowsNoPlantedLink) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give links away";
  // The folder's mode, the link's owner, and whether it is followed. The folder's owner is 2345.
  const std::tuple<mode_t, uid_t, bool> cases[] = {
      {01777, 1234, false}, {01777, 2345, true}, {01777, 0, true},
      {0777, 1234, true},   {01775, 1234, true},
  };
  std::filesystem::create_directory(Path("d"));
  EXPECT_EQ(chown(Path("d").c_str(), 2345, 0), 0);
  for (const auto& [folder_mode, link_owner, is_followed] : cases) {
    for (const std::string path : {"d/l", "d/l/f"}) {
      SCOPED_TRACE(path + " of " + std::to_string(link_owner));
      Write("f", "old");
      chmod(Path("d").c_str(), folder_mode);
      unlink(Path("d/l").c_str());
      symlink(path == "d/l" ? "../f" : "..", Path("d/l").c_str());
      EXPECT_EQ(lchown(Path("d/l").c_str(), link_owner, 0), 0);
      const std::string refusal =
          "cannot open " + path +
          ": its link \"l\" belongs to user ID 1234 and is in a folder that everyone can write to";
      EXPECT_EQ(Edit(path, "new"), is_followed ? "" : refusal);
      EXPECT_EQ(Read("f"), is_followed ? "new" : "old");
    }
  }
}

TEST_F(FileReplacementTest, OverwritesNoOtherProgramsWork) {
  const auto plant = [&] {
    unlink(Path(".f.quarry-new").c_str()), Write(".f.quarry-new", "other");
  };
  // Whether there is a file before, what another program does, and the text that it leaves.
  const std::tuple<const char*, bool, std::function<void()>, const char*> cases[] = {
      {"in place", true, [&] { Write("f", "other"); }, "other"},
      {"replaced", true, [&] { Write("g", "old"), rename(Path("g").c_str(), Path("f").c_str()); },
       "old"},
      {"removed", true, [&] { unlink(Path("f").c_str()); }, ""},
      {"made private", true, [&] { chmod(Path("f").c_str(), 0600); }, "old"},
      {"made", false, [&] { Write("f", "other"); }, "other"},
      {"planted", false, plant, ""},
  };
  for (const auto& [name, exists, meanwhile, text] : cases) {
    SCOPED_TRACE(name);
    unlink(Path("f").c_str());
    if (exists) Write("f", "old");
    EXPECT_EQ(Edit("f", "new", kMayCreate, meanwhile),
              "another program changed f during this edit");
    EXPECT_EQ(Read("f"), text);
  }
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
  failing_calls = {{"flock", EWOULDBLOCK}};
  EXPECT_EQ(Edit("f", "new", patient), "");
  // Only waiting counts.
  const auto work = [&] {
    std::this_thread::sleep_for(2 * hasty.max_wait);
    failing_calls = {{"flock", EWOULDBLOCK}};
  };
  EXPECT_EQ(Edit("f", "newer", hasty, work), "");
  EXPECT_EQ(notices, 0);
  EXPECT_EQ(Read("f"), "newer");
}

TEST_F(FileReplacementTest, MeetsFailuresOfTheSystem) {
  const std::string locks = "an edit needs a file system with file locks (flock)";
  const std::string modes = "an edit needs a file system with modes";
  const std::string mounts =
      "a file that is mounted alone, as into a container, cannot be replaced";
  // What fails, and how; the file, of which only "f" exists; the message and the hint.
  const std::tuple<const char*, int, const char*, std::string, std::string> cases[] = {
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
  for (const auto& [call, error, file, message, hint] : cases) {
    SCOPED_TRACE(call + std::to_string(error));
    Write("f", "old");
    failing_calls = {{call, error}};
    EXPECT_EQ(Edit(file, "new", kMayCreate), message);
    EXPECT_TRUE(failing_calls.empty());
    EXPECT_EQ(hint_.substr(0, hint_.find(';')), hint);
    EXPECT_EQ(Read("f"), message.empty() ? "new" : "old");
    EXPECT_EQ(CountFiles(), 1U);
  }
}

// The second of two edits waits for the first and finds what it made.
TEST_F(FileReplacementTest, MakesAFileOnce) {
  const auto add = [this](const std::string& text) {
    FileReplacement edit(Path("f"), Guarded(kMayCreate));
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
