// The local stand-ins: sealed passwords, key files, the metabase on a folder.

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <climits>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <thread>
#include <tuple>
#include <vector>

#include "platform/cr_runtime.h"
#include "platform/local/file_descriptor.h"
#include "platform/local/local_metab.h"
#include "platform/local/sealed_password.h"
#include "tests/support/support.h"

namespace quarry::platform {
namespace {

using std::string_literals::operator""s;

class PlatformTest : public testing::Test, protected TempFolder {
 protected:
  PlatformTest() {
    umask(077);  // key files are private
    Write("auth.key", kKeyFile);
    EXPECT_EQ(key.Load(Path("auth.key").c_str()), kDecryptDone);
  }
  // The password, or the result as a number when there is none; the buffer is untouched then.
  std::string Open(const std::string& stored, const std::string& file = "auth.key",
                   std::size_t capacity = 255) {
    std::string out(400, '~');
    const int result =
        DecryptPasswdWithKey(Path(file).c_str(), stored.c_str(), out.data(), capacity);
    EXPECT_EQ(out.find_first_not_of('~', result == 0 ? capacity : 0), std::string::npos);
    return result == 0 ? out.substr(0, out.find('\0')) : std::to_string(result);
  }

  SealingKey key;
};

TEST_F(PlatformTest, SealsEveryLengthAndHidesIt) {
  std::set<std::size_t> lengths;
  std::string stored, again;
  for (std::size_t length = 0; length <= kLongestPassword; ++length) {
    const std::string password(length, 'p');
    EXPECT_EQ(SealPassword(key, password, &stored), kDecryptDone);
    EXPECT_EQ(SealPassword(key, password, &again), kDecryptDone);
    EXPECT_NE(stored, again);
    lengths.insert(stored.size());
    EXPECT_EQ(Open(stored), password);
    EXPECT_EQ(Open(stored, "auth.key", length + 1), password);
    EXPECT_EQ(Open(stored, "auth.key", length), length == 0 ? "1" : "8");
  }
  EXPECT_EQ(lengths, (std::set<std::size_t>{154, 240, 325, 410}));
}

TEST_F(PlatformTest, TellsWhyAPasswordDoesNotOpen) {
  Write("other.key", std::string(kKeyFile).replace(63, 1, "4"));
  EXPECT_EQ(Open(kSealed), "correct horse");
  EXPECT_EQ(Open(kSealed, "missing.key"), "2");
  EXPECT_EQ(Open("plain", "missing.key"), "5");
  EXPECT_EQ(Open(kSealed, "other.key"), "6");
  EXPECT_EQ(Open(kSealed + "A"), "7");
  char out[1];
  EXPECT_EQ(DecryptPasswdWithKey(nullptr, "s", out, 1), 1);
  EXPECT_EQ(DecryptPasswdWithKey("k", nullptr, out, 1), 1);
  EXPECT_EQ(DecryptPasswdWithKey("k", "s", nullptr, 1), 1);
  EXPECT_EQ(DecryptPasswdWithKey("k", "s", out, 0), 1);
  std::string changed = kSealed;
  for (char& byte : changed) {
    byte = static_cast<char>(byte ^ 1);
    const auto at = &byte - changed.data();
    EXPECT_EQ(Open(changed), at < 10 ? "5" : at < 15 ? "6" : "7") << at;
    byte = static_cast<char>(byte ^ 1);
  }
}

// Of every length, with every byte replaced by every other one; a NUL cuts the form off.
TEST_F(PlatformTest, LeavesNoSecretOnTheStackOrInRegisters) {
  const std::string path = Path("auth.key");
  std::array<char, 300> out{};
  const Remains remains =
      RemainsOf([&] { DecryptPasswdWithKey(path.c_str(), kSealed.c_str(), out.data(), 255); });
  EXPECT_EQ(out.data(), "correct horse"s);
  const std::string left = remains.stack + remains.registers;
  // Of the cipher's subkey each pair of words, in order and as copies of one; of the key likewise.
  const std::string subkey =
      "\x00\x1b\x38\xf1\xbc\x65\x4a\x04\x70\xf0\x17\x20\x49\x10\x3e\xcc"
      "\xb6\x7d\x8b\xb1\x6b\x11\xd2\xa4\x68\xdb\x66\xa2\xdd\x53\xd4\x7d"s;
  const std::string secrets = subkey + std::string(reinterpret_cast<const char*>(key.bytes()), 32);
  for (std::size_t at = 0; at + 8 <= secrets.size(); at += 4) {
    const std::string word = secrets.substr(at, 4);
    EXPECT_EQ(left.find(word + word), std::string::npos) << at;
    EXPECT_EQ(left.find(secrets.substr(at, 8)), std::string::npos) << at;
  }
  EXPECT_EQ(left.find("correct horse"), std::string::npos);
}

TEST_F(PlatformTest, RefusesEveryChangedForm) {
  int accepted = 0, refused = 0;
  for (const std::size_t size : {63U, 64U, 128U, 254U}) {
    std::string form;
    ASSERT_EQ(SealPassword(key, std::string(size, 'p'), &form), kDecryptDone);
    for (char& byte : form) {
      for (int i = 0; i < 256; ++i, ++byte) {
        char out[255];
        const bool opens = OpenPasswordWithKey(key, form.c_str(), out, sizeof out) == kDecryptDone;
        ++(opens ? accepted : refused);
      }
    }
  }
  EXPECT_EQ(refused, (154 + 240 + 325 + 410) * 255);
  EXPECT_EQ(accepted, 154 + 240 + 325 + 410);  // the unchanged form, once per byte
}

TEST_F(PlatformTest, GivesGuardedMemoryBack) {
  unsigned char state = 0;
  auto bytes = std::make_unique<SecretBytes>(4096);  // ends with its page
  void* const page = bytes->data();
  ASSERT_EQ(mincore(page, 1, &state), 0);
  bytes.reset();
  EXPECT_EQ(mincore(page, 1, &state), -1);  // unmapped
}

TEST_F(PlatformTest, AcceptsOnlyCompleteKeyFiles) {
  // The "9" has bits that mean nothing.
  const std::pair<std::size_t, const char*> changes[] = {
      {64, ""}, {64, "A"}, {64, "\n\n"}, {63, "9"}, {21, " "}, {21, "\xFF"}, {19, "2"}};
  for (const auto& [at, text] : changes) {
    Write("wrong.key", std::string(kKeyFile).replace(at, 1, text));
    EXPECT_EQ(Open(kSealed, "wrong.key"), "4") << at << text;
  }
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(Open(kSealed, "pipe"), "4");
  EXPECT_EQ(Open(kSealed, "."), "4");
  EXPECT_EQ(Open(kSealed, "../../../../../../../dev/null"), "4");
  std::filesystem::create_symlink("auth.key", Path("link"));
  EXPECT_EQ(Open(kSealed, "link"), "correct horse");
}

TEST_F(PlatformTest, AcceptsOnlyPrivateKeyFiles) {
  constexpr uid_t kRoot = 0, kUser = 4001, kOther = 4002, kMore = 4003;
  const std::tuple<uid_t, uid_t, gid_t, std::vector<mode_t>, const char*> cases[] = {
      // caller, owner, group
      {kUser, kUser, kUser, {0600, 0400, 0700}, "correct horse"},
      {kUser, kUser, kUser, {0640, 0620, 0610, 0604, 0602, 0601}, "3"},
      {kUser, kOther, kUser, {0640}, "3"},
      {kUser, kOther, kOther, {0604}, "3"},
      {kUser, kRoot, kUser, {0440}, "correct horse"},  // a mounted secret
      {kUser, kRoot, kUser, {0460, 0450, 0444}, "3"},
      {kUser, kRoot, kOther, {0444}, "3"},
      {kUser, kRoot, kMore, {0440}, "correct horse"},  // a supplementary group of the caller's
      {kRoot, kOther, kOther, {0600}, "correct horse"},
      {kRoot, kRoot, kRoot, {0440, 0604}, "3"},
  };
  if (geteuid() != kRoot) GTEST_SKIP() << "only root can change the user";
  const gid_t more_groups[] = {kMore};
  ASSERT_EQ(setgroups(1, more_groups), 0);
  for (const auto& [caller, owner, group, modes, outcome] : cases) {
    ASSERT_EQ(chown(Path("auth.key").c_str(), owner, group), 0);
    ASSERT_EQ(setegid(caller), 0);
    for (const mode_t mode : modes) {
      ASSERT_EQ(chmod(Path("auth.key").c_str(), mode), 0);
      ASSERT_EQ(seteuid(caller), 0);
      EXPECT_EQ(Open(kSealed), outcome) << caller << owner << group << std::oct << mode;
      ASSERT_EQ(seteuid(kRoot), 0);
    }
  }
}

// Entries are tag (1 the owner, 2 a user, 4 the file's group, 8 a group, 16 the mask, 32 others),
// permissions, user or group.
TEST_F(PlatformTest, AcceptsOnlyTheListOfAMountedSecret) {
  constexpr uid_t kRoot = 0, kUser = 4001, kOther = 4000;
  constexpr unsigned kNone = 0xFFFFFFFF;
  struct Entry {
    std::uint16_t tag, permissions;
    std::uint32_t id = kNone;
  };
  const std::tuple<uid_t, uid_t, std::vector<Entry>, bool> cases[] = {
      // caller, owner, list, whether the file is accepted
      {kUser, kRoot, {{1, 4}, {2, 4, kUser}, {4, 0}, {16, 4}, {32, 0}}, true},
      {kUser, kRoot, {{1, 6}, {2, 4, kUser}, {4, 0}, {16, 4}, {32, 0}}, false},
      {kUser, kRoot, {{1, 4}, {2, 6, kUser}, {4, 0}, {16, 6}, {32, 0}}, false},
      {kUser, kRoot, {{1, 4}, {2, 4, kUser}, {4, 4}, {16, 4}, {32, 0}}, false},
      {kUser, kRoot, {{1, 4}, {2, 4, kUser}, {4, 0}, {16, 4}, {32, 4}}, false},
      {kUser, kRoot, {{1, 4}, {2, 4, kUser}, {4, 0}, {8, 4, kUser}, {16, 4}, {32, 0}}, false},
      {kUser, kRoot, {{1, 4}, {4, 0}, {8, 4, kUser}, {16, 4}, {32, 0}}, false},
      {kUser, kRoot, {{1, 4}, {2, 4, kOther}, {2, 4, kUser}, {4, 0}, {16, 4}, {32, 0}}, false},
      {kUser, kRoot, {{1, 4}, {2, 4, kOther}, {4, 4}, {16, 4}, {32, 0}}, false},
      // Write permission, which the mask takes away.
      {kUser, kRoot, {{1, 4}, {2, 2, kOther}, {2, 4, kUser}, {4, 0}, {16, 4}, {32, 0}}, true},
      {kUser, kUser, {{1, 6}, {2, 4, kOther}, {4, 0}, {16, 4}, {32, 0}}, false},
      {kUser, kUser, {{1, 6}, {2, 4, kOther}, {4, 4}, {16, 0}, {32, 0}}, true},
      {kRoot, kRoot, {{1, 4}, {2, 4, kOther}, {4, 0}, {16, 4}, {32, 0}}, false},
      {kRoot, kRoot, {{1, 4}, {2, 4, kRoot}, {4, 0}, {16, 4}, {32, 0}}, false},
  };
  if (geteuid() != kRoot) GTEST_SKIP() << "only root can change the user";
  const std::string file = Path("auth.key");
  int number = 0;
  for (const auto& [caller, owner, entries, is_accepted] : cases) {
    std::string list("\2\0\0\0", 4);
    list.append(reinterpret_cast<const char*>(entries.data()), entries.size() * sizeof(Entry));
    ASSERT_EQ(chown(file.c_str(), owner, kUser), 0);
    if (setxattr(file.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) != 0) {
      GTEST_SKIP() << "the file system has no access control lists";
    }
    ASSERT_EQ(setegid(kUser) + seteuid(caller), 0);
    EXPECT_EQ(Open(kSealed), is_accepted ? "correct horse" : "3") << "case " << number;
    ++number;
    ASSERT_EQ(seteuid(kRoot), 0);
  }
}

class LocalMetabTest : public PlatformTest {
 protected:
  LocalMetabTest() {
    for (const char* folder : {"full", "pipe", "out", "out/folder"})
      std::filesystem::create_directory(Path(folder));
    for (const char* file : {"full/c.rt", "pipe/r.rt", "out/r", "kept"}) Write(file, file);
    Write("full/r.rt", large);
    EXPECT_EQ(mkfifo(Path("pipe/c.rt").c_str(), 0600), 0);
  }
  cr_status_t Fetch(const std::string& url, const std::string& r, const std::string& c) {
    return metab.GetRoutingTables(url, "l", "p", -1, "k", Path(r), Path(c));
  }
  std::ptrdiff_t CountFiles(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(Path(folder)), {});
  }

  ::storage::utils::LocalMetab metab;
  const std::string full = "file://" + Path("full"), large = std::string(200000, 'r');
};

TEST_F(LocalMetabTest, ChangesNothingWhenItFails) {
  const std::tuple<std::string, const char*, cr_status_t> cases[] = {
      {"file://", "out/c", kLedgerUrlUnsupported},
      {"file://" + Path("missing"), "out/c", kLedgerFolderMissing},
      {"file:///bin/sh", "out/c", kLedgerFolderUnreadable},
      {"file://" + Path("out"), "out/c", kLedgerTableMissing},
      {"file://" + Path("pipe"), "out/c", kLedgerTableUnreadable},
      {full, "out/folder", kRoutingTargetIsFolder},
      {full, "missing/c", kRoutingTargetFailed},
  };
  for (const auto& [url, c_path, status] : cases) {
    EXPECT_EQ(Fetch(url, "out/r", c_path), status);
    EXPECT_EQ(Read("out/r"), "out/r") << status;
    EXPECT_EQ(CountFiles("out"), 2) << status;
  }
}

TEST_F(LocalMetabTest, ReplacesTheTablesAndRemovesAbandonedCopies) {
  umask(0);
  std::filesystem::create_symlink("../kept", Path("out/c"));
  std::filesystem::create_symlink("folder", Path("out/link"));
  const std::string used = Path("out/.quarry-table-ghijkl"),
                    foreign = Path("out/.quarry-table-mnopqr");
  for (const char* name : {"abcdef", "ghijkl", "mnopqr"}) Write("out/.quarry-table-"s + name, "");
  const bool is_foreign = chown(foreign.c_str(), 4001, 4001) == 0;  // by root
  const FileDescriptor user(open(used.c_str(), O_RDONLY));
  ASSERT_EQ(flock(user.get(), LOCK_EX), 0);
  for (const char* r_path : {"out/r", "out/link"}) {
    EXPECT_EQ(Fetch(full, r_path, "out/c"), 0);
    EXPECT_EQ(Read(r_path), large);
  }
  EXPECT_EQ(access(used.c_str(), F_OK), 0);
  EXPECT_EQ(CountFiles("out"), is_foreign ? 6 : 5);
  EXPECT_EQ(Read("out/c") + Read("kept"), "full/c.rtkept");  // the link was replaced
  struct stat status {};
  ASSERT_EQ(lstat(Path("out/c").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
}

TEST_F(LocalMetabTest, RefusesATableThatIsBeingWritten) {
  std::atomic<bool> ended = false;
  std::thread writer([&] {
    std::ofstream table(Path("full/r.rt"), std::ios::app);
    while (!ended) table << 'r' << std::flush;
  });
  // Some copy meets a write; on a busy machine not the first one.
  const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  cr_status_t status = 0;
  while (status == 0 && std::chrono::steady_clock::now() < give_up) status = Fetch(full, "r", "c");
  ended = true;
  writer.join();
  EXPECT_EQ(status, kLedgerTableUnreadable);
}

TEST(CrErrnoException, CarriesItsTexts) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"m", "d", "m: d"}, {"m", nullptr, "m"}, {nullptr, "d", "d"}, {nullptr, nullptr, ""}};
  for (const auto& [message, detail, what] : cases) {
    Cr_ErrnoException copy(0, "", "");
    copy = Cr_ErrnoException(-7, message, detail);
    EXPECT_EQ(copy.status(), -7);
    EXPECT_STREQ(copy.message(), message);
    EXPECT_STREQ(copy.detail(), detail);
    EXPECT_STREQ(copy.what(), what);
  }
}

TEST(CRStatusToStringA, HasATextForEveryNumber) {
  const std::pair<cr_status_t, const char*> cases[] = {
      {0, "success"},          {4, "configuration"},
      {9, "no longer"},        {101, "ledger URL"},
      {102, "does not exist"}, {103, "folder cannot"},
      {104, "lacks"},          {105, "changed"},
      {106, "is a folder"},    {107, "cannot be written"},
      {108, "unknown status"}, {INT_MIN, "unknown status"},
  };
  for (const auto& [status, words] : cases)
    EXPECT_NE(std::strstr(CRStatusToStringA(status), words), nullptr) << status;
}

}  // namespace
}  // namespace quarry::platform
