// What threads may do at the same time; the thread sanitizer looks on.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <iterator>
#include <thread>

#include "config/agent_config.h"
#include "config/client_config.h"
#include "dmconfig/config_file.h"
#include "platform/cr_runtime.h"
#include "platform/local/local_metab.h"
#include "tests/support/support.h"

namespace {

TEST(Threads, ShareAFileAndAMetabaseThatIsDestroyedMeanwhile) {
  const TempFolder folder;
  const std::string path = folder.Path("");
  for (const char* table : {"r.rt", "c.rt"}) folder.Write(table, table);
  folder.Write("auth.key", kKeyFile);
  ASSERT_EQ(chmod(folder.Path("auth.key").c_str(), 0600), 0);
  folder.Write("f", "[SSL]\nkey_dir=" + path + "\n[Ledger]\nurl=file://" + path +
                        "\n[CR]\nlogin=l\npassword=" + kSealed +
                        "\n[Metabase]\nurl=m\n[Control]\naddress=a\n[lynx]\ningest_mode=on\n");

  quarry::storage::dmconfig::DMConfigFile file(folder.Path("f"), "");
  auto owner = std::make_shared<storage::utils::LocalMetab>();
  const std::weak_ptr<storage::utils::LocalMetab> handle = owner;
  std::thread threads[4];
  std::atomic<std::size_t> started = 0;
  const auto work = [&] {
    try {
      for (;;) {
        quarry::storage::dmconfig::DMConfig model;
        std::ostringstream out;
        storage::config::ClientCfg client;
        EXPECT_EQ(file.LoadConfig(&model), 0);
        EXPECT_EQ(file.DumpConfig(&out, &model), 0);
        EXPECT_EQ(client.SetCfg(out.str()), 0);
        EXPECT_TRUE(client.ingest_mode_on_);
        const storage::config::AgentCfg agent(handle, folder.Path("f"));
        EXPECT_EQ(agent.cr_password(), "correct horse");
        if (++started == std::size(threads)) owner.reset();
      }
    } catch (const Cr_ErrnoException& error) {
      EXPECT_EQ(error.status(), 9) << error.what();
    }
  };
  for (std::thread& thread : threads) thread = std::thread(work);
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(handle.expired());
}

}  // namespace
