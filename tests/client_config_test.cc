#include "config/client_config.h"

#include <gtest/gtest.h>

#include "tests/support.h"

namespace storage::config {
namespace {

TEST(ClientCfg, TakesTheIngestModeFromAText) {
  enum Mode { kOn, kOff, kUnchanged };
  struct Case {
    const char* text;
    int status;
    Mode mode;
  };
  const Case cases[] = {
      {"[lynx]\ningest_mode=on", 0, kOn},
      {"[LYNX]\nINGEST_MODE=on\n", 0, kOn},
      {"[lynx]\ningest_mode =  on \n", 0, kOn},
      {"[lynx]\ningest_mode=off\ningest_mode=on\n", 0, kOn},
      {"[lynx]\ningest_mode=ON\n", 0, kOff},
      {"[lynx]\ningest_mode=off\n", 0, kOff},
      {"[lynx]\ningest_mode=yes\n", 0, kOff},
      {"[lynx]\ningest_mode=on \n[lynx]\ningest_mode=one\n", 0, kOff},
      {"[lynx]\ningest_mode=\n", 0, kOff},
      {"[lynx]\r\ningest_mode=on\r\n", 0, kOff},
      {"", 0, kUnchanged},
      {"[lynx]\n", 0, kUnchanged},
      {"[other]\ningest_mode=on\n", 0, kUnchanged},
      {"ingest_mode=on\n", -2, kUnchanged},
      {"[lynx]\ningest_mode=on\nx\n", -2, kUnchanged},
  };
  EXPECT_FALSE(ClientCfg().ingest_mode_on_);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    for (const bool before : {false, true}) {
      const CerrCapture cerr;
      ClientCfg cfg;
      cfg.ingest_mode_on_ = before;
      EXPECT_EQ(cfg.SetCfg(c.text), c.status);
      EXPECT_EQ(cfg.ingest_mode_on_, c.mode == kUnchanged ? before : c.mode == kOn);
    }
  }
}

TEST(ClientCfg, OffersItsTwoSteps) {
  quarry::storage::dmconfig::DMConfig model;
  ClientCfg cfg;
  EXPECT_EQ(cfg.ParseCfg("[a]", nullptr), -1);
  EXPECT_EQ(cfg.ParseCfg("[lynx]\nIngest_Mode=on", &model), 0);
  EXPECT_FALSE(cfg.ingest_mode_on_);
  EXPECT_EQ(cfg.GetConfigValues(&model), 0);
  EXPECT_TRUE(cfg.ingest_mode_on_);
  EXPECT_EQ(Render(&model), "lynx{Ingest_Mode=on}");
  model.Reset();
  EXPECT_EQ(cfg.GetConfigValues(&model), 0);
  EXPECT_TRUE(cfg.ingest_mode_on_);
}

}  // namespace
}  // namespace storage::config
