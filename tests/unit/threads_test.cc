// What threads may do at the same time; the thread sanitizer looks on.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "config/agent_config.h"
#include "config/client_config.h"
#include "dmconfig/config_file.h"
#include "platform/cr_runtime.h"
#include "platform/local/local_metab.h"
#include "platform/local/sealed_password.h"
#include "tests/support/support.h"

namespace {

constexpr int kThreads = 4;

void OnThreads(const std::function<void()>& work) {
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}

TEST(Threads, LoadThroughOneFileIntoModelsOfTheirOwn) {
  const TempFolder folder;
  folder.Write("f", "# c\n[lynx]\ningest_mode = on\n");
  quarry::storage::dmconfig::DMConfigFile file(folder.Path("f"), "");
  OnThreads([&] {
    for (int i = 0; i < 50; ++i) {
      quarry::storage::dmconfig::DMConfig model;
      EXPECT_EQ(file.LoadConfig(&model), 0);
      EXPECT_EQ(model.SetOptionValue("S", "o", "1"), 0);
      std::ostringstream out;
      EXPECT_EQ(file.DumpConfig(&out, &model), 0);
      storage::config::ClientCfg client;
      EXPECT_EQ(client.SetCfg(out.str()), 0);
      EXPECT_TRUE(client.ingest_mode_on_);
    }
  });
}

TEST(Threads, StartAgentsWhileTheOwnerOfTheMetabaseLetsGo) {
  const TempFolder folder;
  folder.Write("auth.key", "quarry-config-key:v1:AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8\n");
  ASSERT_EQ(chmod(folder.Path("auth.key").c_str(), 0600), 0);
  folder.Write("r.rt", "r");
  folder.Write("c.rt", "c");
  quarry::platform::SealingKey key;
  std::string sealed;
  ASSERT_EQ(key.Load(folder.Path("auth.key").c_str()), 0);
  ASSERT_EQ(SealPassword(key, "plain", &sealed), 0);
  folder.Write("agent.conf", "[CR]\nlogin=l\npassword=" + sealed +
                                 "\n[SSL]\nkey_dir=" + folder.Path("") + "\n[Ledger]\nurl=file://" +
                                 folder.Path("") + "\n[Metabase]\nurl=m\n[Control]\naddress=a\n");

  auto owner = std::make_shared<storage::utils::LocalMetab>();
  const std::weak_ptr<storage::utils::LocalMetab> handle = owner;
  std::atomic<int> started = 0, expired = 0;
  std::thread lets_go([&] {
    while (started < kThreads) std::this_thread::yield();
    owner.reset();
  });
  OnThreads([&] {
    while (expired < kThreads) {
      try {
        const storage::config::AgentCfg cfg(handle, folder.Path("agent.conf"));
        EXPECT_EQ(cfg.cr_password(), "plain");
        ++started;
      } catch (const Cr_ErrnoException& error) {
        EXPECT_EQ(error.status(), 9) << error.what();
        ++expired;
        if (error.status() != 9) started = kThreads;  // or nobody would end
      }
    }
  });
  lets_go.join();
  EXPECT_TRUE(handle.expired());
  EXPECT_GE(started, kThreads);
}

}  // namespace
