// AgentCfg with another decryption and another metabase service library. That AgentCfg calls this
// program's DecryptPasswdWithKey also shows that a host system's replaces ours.

#include "config/agent_config.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
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
  std::string request;  // the arguments of the last call: "KEY FILE|STORED|CAPACITY"
};
Decryption decryption;

}  // namespace

extern "C" int DecryptPasswdWithKey(const char* key_file, const char* stored, char* out,
                                    std::size_t capacity) {
  decryption.request = key_file + "|"s + stored + '|' + std::to_string(capacity);
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
    if (during) return during(), status;
    request = ledger_url + '|' + cr_login + '|' + cr_password + '|' + std::to_string(reserved) +
              '|' + ssl_key_dir + '|' + r_path + '|' + c_path;
    return status;
  }

  cr_status_t status = 0;
  std::string request;           // the arguments of the last call
  std::function<void()> during;  // when it is set, the arguments are not copied
};

class AgentCfgTest : public testing::Test, protected TempFolder {
 protected:
  AgentCfgTest() { decryption = {}; }
  // "STATUS|MESSAGE|DETAIL" of a failed start, "ok" of another.
  std::string StartFrom(const std::string& path) {
    const CerrCapture cerr;
    try {
      const AgentCfg cfg(handle, path);
      return "ok";
    } catch (const Cr_ErrnoException& error) {
      const char* const detail = error.detail() == nullptr ? "" : error.detail();
      return std::to_string(error.status()) + '|' + error.message() + '|' + detail;
    }
  }
  std::string Start(const std::string& text) {
    Write("agent.conf", text);
    return StartFrom(Path("agent.conf"));
  }

  std::shared_ptr<FakeMetab> metab = std::make_shared<FakeMetab>();
  std::weak_ptr<FakeMetab> handle = metab;
};

TEST_F(AgentCfgTest, ReadsItsSettingsAndRequestsTheTables) {
  Write("f",
        "[CR]\nlogin=me\0x\nPASSWORD=stored\0x\n[SSL]\nkey_dir=/keys\0x\n"
        "[ledger]\nurl=L\0x\n[METABASE]\nUrl=M\0x\n[control]\naddress=C\0x\n"s);
  const AgentCfg cfg(metab, Path("f"));
  EXPECT_EQ(cfg.ledger_url() + '|' + cfg.cr_login() + '|' + cfg.ssl_key_dir() + '|' +
                cfg.metabase_url() + '|' + cfg.ctrl_address(),
            "L\0x|me\0x|/keys\0x|M\0x|C\0x"s);
  EXPECT_EQ(cfg.cr_password(), "plain");
  EXPECT_EQ(cfg.routing_table_r_path() + cfg.routing_table_c_path(), "/tmp/r.rt/tmp/c.rt");
  EXPECT_EQ(cfg.config_path(), Path("f"));
  EXPECT_EQ(cfg.lib_metab().lock(), metab);
  EXPECT_EQ(cfg.numeric_option(), 10102);
  EXPECT_EQ(decryption.request, "/keys/auth.key|stored|255");
  EXPECT_EQ(metab->request, "L|me|plain|-1|/keys|/tmp/r.rt|/tmp/c.rt");
  EXPECT_EQ(metab.use_count(), 1);
}

TEST_F(AgentCfgTest, FailsAtTheFirstThingThatIsWrong) {
  const std::pair<const char*, std::string> missing[] = {
      {"[CR]\nlogin=\n", "Unable to get the CR login from config file"},
      {"password=\n", "Unable to get the CR password from config file"},
      {"[ssl]\nkey_dir=\n", "Unable to load SSL key dir from config file"},
      {"[ledger]\nurl=\n", "Unable to load LEDGER url from config file"},
      {"[metabase]\nurl=\n", "Unable to load metabase url from config file"},
      {"[control]\naddress=\n", "Unable to load ctrl address from config file"},
  };
  std::string text;
  for (const auto& [lines, message] : missing) {
    EXPECT_EQ(Start(text), "4|" + message + '|');
    EXPECT_EQ(decryption.request + metab->request, "");
    text += lines;
  }
  EXPECT_EQ(Start(text), "ok");
  EXPECT_EQ(decryption.request, "/auth.key||255");
  EXPECT_EQ(StartFrom("no/./a&b\"c"),
            "4|Unable to parse the agent config file: \"no/./a&&b&\"c\"|");

  metab->request.clear();
  decryption.result = 6;
  EXPECT_EQ(Start(kComplete), "4|Unable to decrypt password from config file|");
  EXPECT_EQ(metab->request, "");
  decryption.result = 0;
  metab->status = -5;
  EXPECT_EQ(Start(kComplete), "-5|Unable to get the routing tables from ledgerd|unknown status");
}

TEST_F(AgentCfgTest, CutsALongPathOfTheKeyFile) {
  EXPECT_EQ(Start(kComplete + "[ssl]\nkey_dir=" + std::string(4086, 'd') + '\n'), "ok");
  EXPECT_EQ(decryption.request, std::string(4086, 'd') + "/auth.ke|stored|255");
}

TEST_F(AgentCfgTest, LocksItsHandleLastAndOnlyForTheRequest) {
  bool alive = false;
  metab->during = [&] {
    metab.reset();
    alive = !handle.expired();
  };
  EXPECT_EQ(Start(kComplete), "ok");
  EXPECT_TRUE(alive);
  EXPECT_TRUE(handle.expired());

  decryption.request.clear();
  EXPECT_EQ(Start(kComplete), "9|Lib Metab (ledgerd) weak_ptr has expired|");
  EXPECT_EQ(decryption.request, "/keys/auth.key|stored|255");

  metab = std::make_shared<FakeMetab>();
  metab->during = [] { throw 42; };
  handle = metab;
  EXPECT_THROW(Start(kComplete), int);
  EXPECT_EQ(metab.use_count(), 1);
}

// Runs `work` in a new thread; returns how many copies of the secret's end were in memory that it
// freed, and whether one was on its stack afterwards, where later calls may overwrite the
// beginning.
long SecretsLeftBy(const std::string& whole, std::function<void()> work) {
  const std::string secret = whole.substr(whole.size() - std::min<std::size_t>(whole.size(), 16));
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
  const bool on_stack = memmem(stack.data(), stack.size(), secret.data(), secret.size()) != nullptr;
  return WatchFreedMemory("") + (on_stack ? 1 : 0);
}

TEST_F(AgentCfgTest, LeavesThePasswordInNoMemory) {
  metab->during = [] {};
  Write("f", kComplete);
  const std::string path = Path("f");
  // The first password only binds all functions, which saves registers on the stack.
  const std::string long_one = std::string(200, 'p') + "the end of a long password";
  for (const std::string& password : {"binding"s, "short-one"s, long_one}) {
    for (const cr_status_t status : {0, 107}) {
      decryption.plain = password;
      metab->status = status;
      // Nothing else runs on the stack, which would overwrite what is left there.
      const long left = SecretsLeftBy(password, [&] {
        try {
          const AgentCfg cfg(metab, path);
        } catch (const Cr_ErrnoException&) {
        }
      });
      EXPECT_TRUE(left == 0 || password == "binding") << password << status;
    }
  }
}

TEST_F(AgentCfgTest, IsCompleteOrAbsentWithoutMemory) {
  metab->during = [] {};
  Write("f", "# c\n" + kComplete);
  decryption.plain = kLongText + '!';  // no other test leaves it in memory
  const auto start = [&] {
    const std::string outcome = StartFrom(Path("f"));
    return outcome == "ok" ? 0 : std::stoi(outcome);
  };
  const auto check = [&](int result) {
    EXPECT_TRUE(result == kThrown || result == 4) << result;  // 4 from the reader
    EXPECT_EQ(metab.use_count(), 1);
    EXPECT_EQ(start(), 0);
  };
  WatchFreedMemory(decryption.plain);
  const auto failed = FailEachAllocation([] {}, start, check);
  EXPECT_GT(failed, 0);
  EXPECT_EQ(WatchFreedMemory(""), 0);
}

}  // namespace
}  // namespace storage::config
