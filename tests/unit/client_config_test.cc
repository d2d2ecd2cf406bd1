#include "config/client_config.h"

#include <gtest/gtest.h>

#include <tuple>

#include "tests/support/support.h"

namespace storage::config {
namespace {

TEST(ClientCfg, SetsTheIngestModeFromAText) {
  const std::tuple<const char*, int, bool, bool> cases[] = {
      {"[LYNX]\nIngest_Mode=on", 0, true, true},
      {"[lynx]\ningest_mode=ON\n", 0, false, false},
      {"[lynx]\ningest_mode=on \n[lynx]\ningest_mode=one\n", 0, false, false},
      {"[lynx]\n", 0, false, true},
      {"[lynx]\ningest_mode=on\nx\n", -2, false, true},
  };
  for (const auto& [text, status, from_off, from_on] : cases) {
    SCOPED_TRACE(text);
    ClientCfg off, on;
    on.ingest_mode_on_ = true;
    EXPECT_EQ(off.SetCfg(text), status);
    EXPECT_EQ(on.SetCfg(text), status);
    EXPECT_EQ(off.ingest_mode_on_, from_off);
    EXPECT_EQ(on.ingest_mode_on_, from_on);
  }
}

TEST(ClientCfg, RefusesANullModel) { EXPECT_EQ(ClientCfg().ParseCfg("[a]", nullptr), -1); }

}  // namespace
}  // namespace storage::config
