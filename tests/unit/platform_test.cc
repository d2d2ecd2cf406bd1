// The local stand-ins: sealed passwords, key files, the metabase on a folder.

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <fstream>
#include <numeric>
#include <set>
#include <thread>
#include <type_traits>

#include "platform/cr_runtime.h"
#include "platform/local/file_descriptor.h"
#include "platform/local/local_metab.h"
#include "platform/local/sealed_password.h"
#include "tests/support/support.h"

namespace quarry::platform {
namespace {

const std::string kKeyLine = "quarry-config-key:v1:AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8\n";

// Made by another implementation of both ciphers, with the key above and the
// nonce 0x40, 0x41, ...
const std::string kKnown =
    "sealed:v1:1J0pvUBBQkNERUZHSElKS0xNTk9QUVJTVFVWV7dWdwK1gw0255v1zcocZZKSuq3E"
    "E1lTmmox_UUJBCOQFvkCblWShBD_svRMCtra8ZtrfehvhbSctvwI9BOyTFQXgFQ_kvFhMs8Ic3"
    "cTnFQ4";

class PlatformTest : public testing::Test, protected TempFolder {
 protected:
  PlatformTest() { Write("auth.key", kKeyLine); }
  void Write(const std::string& name, const std::string& text, mode_t mode = 0600) {
    TempFolder::Write(name, text);
    EXPECT_EQ(chmod(Path(name).c_str(), mode), 0);
  }
  // The password, or "RESULT" when there is none; the buffer is untouched then.
  std::string Open(const std::string& stored, const std::string& key = "auth.key",
                   std::size_t capacity = 255) {
    std::string out(400, '~');
    const int result =
        DecryptPasswdWithKey(Path(key).c_str(), stored.c_str(), out.data(), capacity);
    if (result != 0) {
      EXPECT_EQ(out, std::string(400, '~'));
      return "RESULT " + std::to_string(result);
    }
    EXPECT_EQ(out.substr(capacity), std::string(400 - capacity, '~'));
    return out.substr(0, out.find('\0'));
  }
};

TEST_F(PlatformTest, SealsAndOpensTheKnownAnswer) {
  unsigned char nonce[24];
  std::iota(std::begin(nonce), std::end(nonce), static_cast<unsigned char>(0x40));
  SealingKey key;
  ASSERT_EQ(key.Load(Path("auth.key").c_str()), kDecryptDone);
  std::string stored;
  EXPECT_EQ(SealPasswordWithNonce(key, nonce, "correct horse", &stored), kDecryptDone);
  EXPECT_EQ(stored, kKnown);
  EXPECT_EQ(Open(kKnown), "correct horse");
}

TEST_F(PlatformTest, SealsEveryLengthAndHidesIt) {
  SealingKey key;
  ASSERT_EQ(key.Load(Path("auth.key").c_str()), kDecryptDone);
  std::set<std::size_t> lengths;
  std::string stored, again;
  for (std::size_t length = 0; length <= kLongestPassword; ++length) {
    const std::string password(length, 'p');
    ASSERT_EQ(SealPassword(key, password, &stored), kDecryptDone);
    EXPECT_EQ(SealPassword(key, password, &again), kDecryptDone);
    EXPECT_NE(stored, again);
    lengths.insert(stored.size());
    EXPECT_EQ(Open(stored), password);
    EXPECT_EQ(Open(stored, "auth.key", length + 1), password);
    EXPECT_EQ(Open(stored, "auth.key", length), length == 0 ? "RESULT 1" : "RESULT 8");
  }
  EXPECT_EQ(lengths, (std::set<std::size_t>{154, 240, 325, 410}));
}

// Of every length that there is, in every place by every other byte, which a NUL makes
// a cut.
TEST_F(PlatformTest, RefusesEveryChangedForm) {
  SealingKey key;
  ASSERT_EQ(key.Load(Path("auth.key").c_str()), kDecryptDone);
  int refused = 0;
  const auto expect_refused = [&](const std::string& form) {
    char out[255];
    ASSERT_NE(OpenPasswordWithKey(key, form.c_str(), out, sizeof out), kDecryptDone) << form;
    ++refused;
  };
  for (const std::size_t size : {63U, 64U, 128U, 254U}) {
    std::string form;
    ASSERT_EQ(SealPassword(key, std::string(size, 'p'), &form), kDecryptDone);
    for (std::size_t at = 0; at < form.size(); ++at) {
      std::string changed = form;
      while (++changed[at] != form[at]) expect_refused(changed);
    }
    for (const std::string& more : {form, std::string("A"), std::string(4000, 'A')})
      expect_refused(form + more);
  }
  EXPECT_EQ(refused, (154 + 240 + 325 + 410) * 255 + 4 * 3);
}

TEST_F(PlatformTest, TellsWhyAPasswordDoesNotOpen) {
  Write("other.key", "quarry-config-key:v1:AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh4\n");
  std::string damaged = kKnown;
  damaged[40] = 'B';
  struct Case {
    std::string stored, key, outcome;
  };
  const Case cases[] = {
      {"plain", "auth.key", "RESULT 5"},
      {"sealed:v2:" + kKnown.substr(10), "auth.key", "RESULT 5"},
      {kKnown, "other.key", "RESULT 6"},
      {damaged, "auth.key", "RESULT 7"},
  };
  for (const Case& c : cases) EXPECT_EQ(Open(c.stored, c.key), c.outcome);

  char out[1];
  const char* const key = "k";
  EXPECT_EQ(DecryptPasswdWithKey(nullptr, "s", out, 1), 1);
  EXPECT_EQ(DecryptPasswdWithKey(key, nullptr, out, 1), 1);
  EXPECT_EQ(DecryptPasswdWithKey(key, "s", nullptr, 1), 1);
  EXPECT_EQ(DecryptPasswdWithKey(key, "s", out, 0), 1);
}

TEST_F(PlatformTest, TakesOnlyKeyFilesThatAreWhole) {
  const std::string body = kKeyLine.substr(0, kKeyLine.size() - 1);
  const std::string wrong[] = {
      "",
      body,
      kKeyLine + "\n",
      body + "A",
      body.substr(0, body.size() - 1) + "9\n",  // bits that mean nothing
      "quarry-config-key:v2:" + kKeyLine.substr(21),
      body.substr(0, 30) + " " + kKeyLine.substr(31),
      body.substr(0, 30) + "\xFF" + kKeyLine.substr(31),
      std::string(5000, 'A'),
  };
  for (const std::string& text : wrong) {
    Write("wrong.key", text);
    EXPECT_EQ(Open(kKnown, "wrong.key"), "RESULT 4") << text;
  }
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(Open(kKnown, "pipe"), "RESULT 4");
  EXPECT_EQ(Open(kKnown, "."), "RESULT 4");
  EXPECT_EQ(Open(kKnown, "../../../../../../../dev/null"), "RESULT 4");
  ASSERT_EQ(symlink("auth.key", Path("link").c_str()), 0);
  EXPECT_EQ(Open(kKnown, "link"), "correct horse");
}

TEST_F(PlatformTest, TakesOnlyKeyFilesThatArePrivate) {
  constexpr uid_t kRoot = 0, kUser = 4001, kOther = 4002, kMore = 4003;
  struct Case {
    uid_t caller, owner, group;
    mode_t mode;
    const char* outcome;
  };
  const Case cases[] = {
      {kUser, kUser, kUser, 0600, "correct horse"},
      {kUser, kUser, kUser, 0400, "correct horse"},
      {kUser, kUser, kUser, 0700, "correct horse"},
      {kUser, kUser, kUser, 0640, "RESULT 3"},
      {kUser, kUser, kUser, 0620, "RESULT 3"},
      {kUser, kUser, kUser, 0610, "RESULT 3"},
      {kUser, kUser, kUser, 0604, "RESULT 3"},
      {kUser, kUser, kUser, 0602, "RESULT 3"},
      {kUser, kUser, kUser, 0601, "RESULT 3"},
      {kUser, kOther, kUser, 0640, "RESULT 3"},
      {kUser, kOther, kOther, 0604, "RESULT 3"},
      {kUser, kRoot, kUser, 0440, "correct horse"},  // a mounted secret
      {kUser, kRoot, kUser, 0460, "RESULT 3"},
      {kUser, kRoot, kUser, 0450, "RESULT 3"},
      {kUser, kRoot, kUser, 0444, "RESULT 3"},
      {kUser, kRoot, kOther, 0444, "RESULT 3"},
      {kUser, kRoot, kRoot, 0600, "RESULT 2"},
      {kRoot, kOther, kOther, 0600, "correct horse"},
      {kRoot, kRoot, kRoot, 0440, "RESULT 3"},
      {kRoot, kRoot, kRoot, 0604, "RESULT 3"},
      {kUser, kRoot, kMore, 0440, "RESULT 3"},  // by one more group of the caller's
  };
  if (geteuid() != kRoot) GTEST_SKIP() << "only root can take these parts";
  const gid_t more_groups[] = {kMore};
  ASSERT_EQ(setgroups(1, more_groups), 0);
  for (const Case& c : cases) {
    ASSERT_EQ(chown(Path("auth.key").c_str(), c.owner, c.group), 0);
    ASSERT_EQ(chmod(Path("auth.key").c_str(), c.mode), 0);
    ASSERT_EQ(setegid(c.caller), 0);
    ASSERT_EQ(seteuid(c.caller), 0);
    const std::string outcome = Open(kKnown);
    ASSERT_EQ(seteuid(kRoot), 0);
    ASSERT_EQ(setegid(kRoot), 0);
    EXPECT_EQ(outcome, c.outcome) << c.caller << ' ' << c.owner << ' ' << c.group << ' ' << std::oct
                                  << c.mode;
  }
}

TEST_F(PlatformTest, CopiesTheRoutingTables) {
  ASSERT_EQ(mkdir(Path("ledger").c_str(), 0700), 0);
  ASSERT_EQ(mkdir(Path("out").c_str(), 0700), 0);
  ASSERT_EQ(mkdir(Path("out/folder").c_str(), 0700), 0);
  const std::string large(200000, 'r');
  Write("kept", "kept", 0700);
  const auto fetch = [this](const std::string& url, const std::string& r, const std::string& c) {
    return ::storage::utils::LocalMetab().GetRoutingTables(url, "l", "p", -1, "k", Path(r),
                                                           Path(c));
  };
  const std::string url = "file://" + Path("ledger");
  const auto expect_no_change = [&](cr_status_t status, const std::string& from,
                                    const std::string& c) {
    EXPECT_EQ(fetch(from, "out/r", c), status);
    EXPECT_EQ(Read("out/r"), "old");
    EXPECT_EQ(
        std::system(("test \"$(ls -A " + Path("out") + ")\" = \"$(printf 'folder\\nr')\"").c_str()),
        0);
  };
  Write("out/r", "old");
  expect_no_change(kLedgerUrlUnsupported, "file://", "out/c");
  expect_no_change(kLedgerFolderUnreadable, "file://" + Path("kept"), "out/c");
  Write("ledger/r.rt", large);
  expect_no_change(kLedgerTableMissing, url, "out/c");
  ASSERT_EQ(mkfifo(Path("ledger/c.rt").c_str(), 0600), 0);
  expect_no_change(kLedgerTableUnreadable, url, "out/c");
  ASSERT_EQ(unlink(Path("ledger/c.rt").c_str()), 0);
  Write("ledger/c.rt", "");
  expect_no_change(kRoutingTargetIsFolder, url, "out/folder");
  expect_no_change(kRoutingTargetFailed, url, "missing/c");

  ASSERT_EQ(symlink("../kept", Path("out/c").c_str()), 0);
  const std::string abandoned = "out/.quarry-table-abcdef", used = "out/.quarry-table-ghijkl",
                    foreign = "out/.quarry-table-mnopqr";
  for (const std::string& copy : {abandoned, used, foreign}) Write(copy, "");
  const bool is_foreign =
      chown(Path(foreign).c_str(), 4001, static_cast<gid_t>(-1)) == 0;  // by root
  const FileDescriptor user(open(Path(used).c_str(), O_RDONLY));
  ASSERT_EQ(flock(user.get(), LOCK_EX), 0);
  EXPECT_EQ(fetch(url, "out/r", "out/c"), 0);
  EXPECT_NE(access(Path(abandoned).c_str(), F_OK), 0);
  EXPECT_EQ(access(Path(used).c_str(), F_OK), 0);
  EXPECT_EQ(access(Path(foreign).c_str(), F_OK) == 0, is_foreign);
  EXPECT_EQ(Read("out/r"), large);
  EXPECT_EQ(Read("out/c") + Read("kept"), "kept");  // the link was replaced
  struct stat status {};
  ASSERT_EQ(lstat(Path("out/c").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
  ASSERT_EQ(symlink("folder", Path("out/link").c_str()), 0);
  EXPECT_EQ(fetch(url, "out/link", "out/c"), 0);
  EXPECT_EQ(Read("out/link"), large);
}

TEST_F(PlatformTest, RefusesATableThatIsBeingWritten) {
  Write("r.rt", std::string(200000, 'r'));
  Write("c.rt", "");
  std::atomic<bool> ended = false;
  std::thread writer([&] {
    std::ofstream table(Path("r.rt"), std::ios::app);
    while (!ended) table << 'r' << std::flush;
  });
  // Some copy meets a write; on a busy machine not the first one.
  const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  cr_status_t status = 0;
  while (status == 0 && std::chrono::steady_clock::now() < give_up) {
    status = ::storage::utils::LocalMetab().GetRoutingTables("file://" + Path(""), "l", "p", -1,
                                                             "k", Path("r"), Path("c"));
  }
  ended = true;
  writer.join();
  EXPECT_EQ(status, kLedgerTableUnreadable);
}

static_assert(std::is_nothrow_copy_constructible_v<Cr_ErrnoException> &&
              std::is_nothrow_copy_assignable_v<Cr_ErrnoException>);

TEST(CrErrnoException, CarriesItsTexts) {
  struct Case {
    const char *message, *detail, *what;
  };
  const Case cases[] = {
      {"m", "d", "m: d"}, {"m", nullptr, "m"}, {nullptr, "d", "d"}, {nullptr, nullptr, ""}};
  for (const Case& c : cases) {
    Cr_ErrnoException copy(0, "", "");
    {
      const Cr_ErrnoException original(-7, c.message, c.detail);
      copy = original;
    }
    EXPECT_EQ(copy.status(), -7);
    EXPECT_STREQ(copy.message(), c.message);
    EXPECT_STREQ(copy.detail(), c.detail);
    EXPECT_STREQ(copy.what(), c.what);
  }
}

TEST(CRStatusToStringA, HasATextForEveryNumber) {
  struct Case {
    cr_status_t status;
    const char* words;
  };
  const Case cases[] = {
      {0, "success"},           {4, "configuration"},
      {9, "no longer"},         {101, "ledger URL"},
      {102, "does not exist"},  {103, "folder cannot"},
      {104, "lacks"},           {105, "changed"},
      {106, "a folder stands"}, {107, "cannot be written"},
      {108, "unknown status"},  {INT_MIN, "unknown status"},
  };
  for (const Case& c : cases) {
    EXPECT_NE(std::string(CRStatusToStringA(c.status)).find(c.words), std::string::npos)
        << c.status;
  }
}

}  // namespace
}  // namespace quarry::platform
