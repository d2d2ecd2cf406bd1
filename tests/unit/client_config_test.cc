#include "config/client_config.h"

#include <gtest/gtest.h>

#include "tests/support/support.h"

namespace storage::config {
namespace {

TEST(ClientCfg, TakesTheIngestModeFromAText) {
  struct Case {
    const char* text;
    int status;
    bool from_off, from_on;
  };
  const Case cases[] = {
      {"[lynx]\ningest_mode=on", 0, true, true},
      {"[lynx]\ningest_mode=ON\n", 0, false, false},
      {"[lynx]\ningest_mode=on \n[lynx]\ningest_mode=one\n", 0, false, false},
      {"[lynx]\n", 0, false, true},
      {"[lynx]\ningest_mode=on\nx\n", -2, false, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    for (const bool before : {false, true}) {
      const CerrCapture cerr;
      ClientCfg cfg;
      cfg.ingest_mode_on_ = before;
      EXPECT_EQ(cfg.SetCfg(c.text), c.status);
      EXPECT_EQ(cfg.ingest_mode_on_, before ? c.from_on : c.from_off);
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
}

}  // namespace
}  // namespace storage::config
