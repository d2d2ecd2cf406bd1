// AgentCfg with a decryption and a metabase service library of its own. That
// this program's DecryptPasswdWithKey is the one that AgentCfg calls also shows
// that a host system's takes the place of ours.

#include "config/agent_config.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <vector>

#include "platform/cr_runtime.h"
#include "tests/support/support.h"
#include "tests/support/test_allocator.h"

namespace {

using std::string_literals::operator""s;

struct Decryption {
  int result = 0;
  std::string plain = "plain";
  std::string asked;  // "KEY FILE|STORED|CAPACITY" of the last call
};
Decryption decryption;

}  // namespace

extern "C" int DecryptPasswdWithKey(const char* key_file, const char* stored, char* out,
                                    std::size_t capacity) {
  decryption.asked = std::string(key_file) + '|' + stored + '|' + std::to_string(capacity);
  if (decryption.result == 0) out[decryption.plain.copy(out, capacity - 1)] = '\0';
  return decryption.result;
}

namespace storage::config {
namespace {

const std::string kComplete =
    "[CR]\nlogin=me\nPASSWORD=stored\n[SSL]\nkey_dir=/keys\n[ledger]\nurl=L\n"
    "[METABASE]\nUrl=M\n[control]\naddress=C\n[Agent]\nnumeric_option=5\n";

class FakeMetab : public utils::LibMetabInterface {
 public:
  cr_status_t GetRoutingTables(const std::string& ledger_url, const std::string& cr_login,
                               const std::string& cr_password, std::int32_t reserved,
                               const std::string& ssl_key_dir, const std::string& r_path,
                               const std::string& c_path) override {
    if (forgetful) return status;
    asked = ledger_url + '|' + cr_login + '|' + cr_password + '|' + std::to_string(reserved) + '|' +
            ssl_key_dir + '|' + r_path + '|' + c_path;
    if (during) during();
    return status;
  }

  cr_status_t status = 0;
  bool forgetful = false;  // keeps no copy of what it is asked
  std::string asked;
  std::function<void()> during;
};

// The file that the tests start from, and its path once it has that text.
std::string AgentFile() {
  static const TempFolder folder;
  return folder.Path("agent.conf");
}
std::string Written(const std::string& text) {
  std::ofstream(AgentFile()) << text;
  return AgentFile();
}

// "STATUS|MESSAGE|DETAIL" of a failed start, "ok" of another.
std::string Start(const std::string& path, const std::weak_ptr<utils::LibMetabInterface>& metab,
                  const std::function<void(const AgentCfg&)>& look = {}) {
  decryption.asked.clear();
  const CerrCapture cerr;
  try {
    const AgentCfg cfg(metab, path);
    if (look) look(cfg);
    return "ok";
  } catch (const Cr_ErrnoException& error) {
    const char* const detail = error.detail();
    return std::to_string(error.status()) + '|' + error.message() + '|' +
           (detail == nullptr ? "" : detail);
  }
}

TEST(AgentCfg, TakesItsSettingsAndRequestsTheTables) {
  const auto metab = std::make_shared<FakeMetab>();
  const std::string path = Written(
      "[CR]\nlogin=me\0x\nPASSWORD=stored\0x\n[SSL]\nkey_dir=/keys\0x\n"
      "[ledger]\nurl=L\0x\n[METABASE]\nUrl=M\0x\n[control]\naddress=C\0x\n"s);
  EXPECT_EQ(Start(path, metab,
                  [&](const AgentCfg& cfg) {
                    EXPECT_EQ(cfg.ledger_url(), "L\0x"s);
                    EXPECT_EQ(cfg.cr_login(), "me\0x"s);
                    EXPECT_EQ(cfg.cr_password(), "plain");
                    EXPECT_EQ(cfg.ssl_key_dir(), "/keys\0x"s);
                    EXPECT_EQ(cfg.routing_table_r_path(), "/tmp/r.rt");
                    EXPECT_EQ(cfg.routing_table_c_path(), "/tmp/c.rt");
                    EXPECT_EQ(cfg.config_path(), path);
                    EXPECT_EQ(cfg.metabase_url(), "M\0x"s);
                    EXPECT_EQ(cfg.lib_metab().lock(), metab);
                    EXPECT_EQ(cfg.ctrl_address(), "C\0x"s);
                    EXPECT_EQ(cfg.numeric_option(), 10102);
                  }),
            "ok");
  EXPECT_EQ(decryption.asked, "/keys/auth.key|stored|255");
  EXPECT_EQ(metab->asked, "L|me|plain|-1|/keys|/tmp/r.rt|/tmp/c.rt");
  EXPECT_EQ(metab.use_count(), 1);
}

TEST(AgentCfg, FailsAtTheFirstThingThatIsWrong) {
  struct Case {
    const char *missing, *message;
  };
  const Case cases[] = {
      {"[CR]\nlogin=me\n", "Unable to get the CR login from config file"},
      {"PASSWORD=stored\n", "Unable to get the CR password from config file"},
      {"[SSL]\nkey_dir=/keys\n", "Unable to load SSL key dir from config file"},
      {"[ledger]\nurl=L\n", "Unable to load LEDGER url from config file"},
      {"[METABASE]\nUrl=M\n", "Unable to load metabase url from config file"},
      {"[control]\naddress=C\n", "Unable to load ctrl address from config file"},
  };
  decryption = {};
  const auto metab = std::make_shared<FakeMetab>();
  std::string text;
  for (const Case& c : cases) {
    EXPECT_EQ(Start(Written(text), metab), "4|" + std::string(c.message) + '|');
    EXPECT_EQ(decryption.asked + metab->asked, "");
    text += c.missing;
  }
  EXPECT_EQ(Start("missing/./a&b\"c", metab),
            "4|Unable to parse the agent config file: \"missing/./a&&b&\"c\"|");
  EXPECT_EQ(Start(Written("[cr]\nlogin=\npassword=\n[ssl]\nkey_dir=\n[ledger]\nurl=\n"
                          "[metabase]\nurl=\n[control]\naddress=\n"),
                  metab),
            "ok");
  EXPECT_EQ(decryption.asked, "/auth.key||255");

  metab->asked.clear();
  decryption.result = 6;
  EXPECT_EQ(Start(Written(kComplete), metab), "4|Unable to decrypt password from config file|");
  EXPECT_EQ(metab->asked, "");
  decryption.result = 0;
  metab->status = -5;
  EXPECT_EQ(Start(Written(kComplete), metab),
            "-5|Unable to get the routing tables from ledgerd|unknown status");
}

TEST(AgentCfg, FormsThePathOfTheKeyFile) {
  struct Case {
    std::string key_dir, key_file;
  };
  const Case cases[] = {
      {"/keys/", "/keys//auth.key"},
      {"/" + std::string(4085, 'd'), "/" + std::string(4085, 'd') + "/auth.ke"},
      {std::string(9000, 'd'), std::string(4094, 'd')},
  };
  decryption = {};
  const auto metab = std::make_shared<FakeMetab>();
  for (const Case& c : cases) {
    EXPECT_EQ(Start(Written(kComplete + "[ssl]\nkey_dir=" + c.key_dir + "\n"), metab), "ok");
    EXPECT_EQ(decryption.asked, c.key_file + "|stored|255");
  }
}

TEST(AgentCfg, PromotesItsHandleLastAndHoldsItForTheRequest) {
  const std::string expired = "9|Lib Metab (ledgerd) weak_ptr has expired|";
  decryption = {};
  EXPECT_EQ(Start(Written(kComplete), {}), expired);
  EXPECT_EQ(decryption.asked, "/keys/auth.key|stored|255");
  auto owner = std::make_shared<FakeMetab>();
  const std::weak_ptr<utils::LibMetabInterface> handle = owner;
  owner.reset();
  EXPECT_EQ(Start(Written(kComplete), handle), expired);
  EXPECT_EQ(Start("", handle), "4|Unable to parse the agent config file: \"\"|");

  owner = std::make_shared<FakeMetab>();
  const std::weak_ptr<utils::LibMetabInterface> watched = owner;
  bool alive = false;
  owner->during = [&] {
    owner.reset();
    alive = !watched.expired();
  };
  EXPECT_EQ(
      Start(Written(kComplete), watched, [&](const AgentCfg&) { EXPECT_TRUE(watched.expired()); }),
      "ok");
  EXPECT_TRUE(alive);

  owner = std::make_shared<FakeMetab>();
  owner->during = [] { throw 42; };
  EXPECT_THROW(Start(Written(kComplete), owner), int);
  EXPECT_EQ(owner.use_count(), 1);
}

// Runs `work` in a thread of its own; returns how often `secret` was found
// afterwards on its stack, and meanwhile in memory that was freed.
long SecretsLeftBy(const std::string& secret, std::function<void()> work) {
  static std::vector<char> stack(1U << 20U);
  std::fill(stack.begin(), stack.end(), '\0');
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack.data(), stack.size());
  const auto run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  WatchFreedMemory(secret);
  pthread_t thread = 0;
  EXPECT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
  pthread_join(thread, nullptr);
  const long freed = FreedSecrets();
  WatchFreedMemory("");
  const void* const found = memmem(stack.data(), stack.size(), secret.data(), secret.size());
  return freed + (found == nullptr ? 0 : 1);
}

TEST(AgentCfg, LeavesThePasswordInNoMemory) {
  const std::string path = Written(kComplete);
  const std::string long_one = "a plain password too long for a small string";
  // The first one only binds all functions, which saves registers on the stack.
  for (const std::string& plain : {"binding"s, "short-one"s, long_one}) {
    for (const cr_status_t status : {0, 107}) {
      SCOPED_TRACE(plain + std::to_string(status));
      decryption = {};
      decryption.plain = plain;
      const auto metab = std::make_shared<FakeMetab>();
      metab->status = status;
      metab->forgetful = true;
      const long left = SecretsLeftBy(plain, [&] {
        try {
          const AgentCfg cfg(metab, path);
          EXPECT_EQ(cfg.cr_password(), plain);
        } catch (const Cr_ErrnoException&) {
        }
      });
      if (plain != "binding") {
        EXPECT_EQ(left, 0);
      }
    }
  }
}

TEST(AgentCfg, IsThereWholeOrNotWithoutMemory) {
  decryption = {};
  decryption.plain = "a plain password too long for a small string";
  const std::string path = Written("# c\n" + kComplete);
  const CerrCapture cerr;
  WatchFreedMemory(decryption.plain);
  std::shared_ptr<FakeMetab> metab;
  const auto prepare = [&] {
    metab = std::make_shared<FakeMetab>();
    metab->forgetful = true;
  };
  const auto start = [&] {
    try {
      const AgentCfg cfg(metab, path);
      return 0;
    } catch (const Cr_ErrnoException& error) {
      return error.status();
    }
  };
  const auto look = [&](int result) {
    // 4 when it was the reader that had none.
    EXPECT_TRUE(result == kThrown || result == 4) << result;
    EXPECT_EQ(metab.use_count(), 1);
    EXPECT_EQ(start(), 0);
  };
  EXPECT_GT(FailEachAllocation("AgentCfg", prepare, start, look), 0);
  EXPECT_EQ(FreedSecrets(), 0);
  WatchFreedMemory("");
}

}  // namespace
}  // namespace storage::config
