// AgentCfg with another decryption and another metabase service library. That AgentCfg calls this
// program's DecryptPasswdWithKey also shows that a host system's replaces ours.

#include "config/agent_config.h"

#include <gtest/gtest.h>

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

// The copies of the secret's end in memory that `work` freed, and one if it left any elsewhere.
long SecretsLeftBy(const std::string& whole, const std::function<void()>& work) {
  const std::string secret =
      whole.substr(whole.size() - std::min<std::size_t>(whole.size() - 1, 16));
  WatchFreedMemory(secret);
  // The registers do not count: the search of freed memory leaves the secret there.
  const Remains remains = RemainsOf(work);
  return WatchFreedMemory("") + (remains.stack.find(secret) == std::string::npos ? 0 : 1);
}

TEST_F(AgentCfgTest, LeavesThePasswordInNoMemory) {
  metab->during = [] {};
  Write("f", kComplete);
  const std::string path = Path("f");
  const std::function<void(AgentCfg)> uses[] = {
      [](const AgentCfg&) {},
      [](AgentCfg cfg) { const AgentCfg moved(std::move(cfg)); },
      [](const AgentCfg& cfg) {
        AgentCfg copy(cfg);
        copy = cfg;
      },
      [](AgentCfg cfg) {
        AgentCfg copy(cfg);
        cfg = std::move(copy);
      },
  };
  const std::string long_one = std::string(200, 'p') + "the end of a long password";
  // The first password only binds all functions, which saves registers on the stack.
  for (const std::string& password : {"binding"s, "short-one"s, long_one}) {
    for (const cr_status_t status : {0, 107}) {
      for (const auto& use : uses) {
        decryption.plain = password;
        metab->status = status;
        // Nothing else runs on the stack, which would overwrite what is left there.
        const long left = SecretsLeftBy(password, [&] {
          try {
            use(AgentCfg(metab, path));
          } catch (const Cr_ErrnoException&) {
          }
        });
        // Not by SCOPED_TRACE, which would leave the password on the heap.
        EXPECT_TRUE(left == 0 || password == "binding")
            << password << ' ' << status << ' ' << &use - uses;
      }
    }
  }
}

TEST_F(AgentCfgTest, MovesThePasswordOutOfTheObject) {
  Write("f", kComplete);
  decryption.plain = "short-one";  // inside the std::string, where a move overwrites its first byte
  const auto holds_password = [](const AgentCfg* cfg) {
    return memmem(cfg, sizeof *cfg, "hort-one", 8) != nullptr;
  };
  AgentCfg first(metab, Path("f"));
  AgentCfg second(std::move(first));
  EXPECT_FALSE(holds_password(&first));  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(second.cr_password() + second.ctrl_address(), "short-oneC");
  first = std::move(second);
  EXPECT_FALSE(holds_password(&second));  // NOLINT(bugprone-use-after-move)
  second = first;
  EXPECT_EQ(second.cr_password() + first.cr_password(), "short-oneshort-one");
  second = *&second;
  EXPECT_EQ(second.cr_password() + second.ctrl_address(), "short-oneC");
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
