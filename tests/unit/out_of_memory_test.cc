// Lets every allocation of every operation fail in turn, once and from then on,
// and looks at what is left.

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "config/client_config.h"
#include "dmconfig/config.h"
#include "dmconfig/config_file.h"
#include "tests/support/support.h"
#include "tests/support/test_allocator.h"

namespace quarry::storage::dmconfig {
namespace {

const std::string kText = "a_text_that_is_longer_than_a_small_string";

TEST(Exhaustion, StopsTheWriter) {
  DMConfig model;
  model.SetOptionValue(kText, kText, kText, kText);
  const std::string before = Render(&model);
  const auto dump = [&] {
    std::ostringstream out;
    return DMConfigFile("", "").DumpConfig(&out, &model);
  };
  const auto look = [&](int result) {
    EXPECT_TRUE(result == kThrown || result == -4) << result;
    EXPECT_EQ(Render(&model), before);
  };
  EXPECT_GT(FailEachAllocation(
                "DumpConfig", [] {}, dump, look),
            0);
}

TEST(Exhaustion, StopsTheReaderBetweenLines) {
  const std::string text = "\n#" + kText + "\n[S]\n#" + kText + "\no=" + kText + "\n[" + kText +
                           "]\n" + kText + "=" + kText + "\n" + kText + "=" + kText + kText + "\n";
  const std::string section = "S(\n#" + kText + "){";
  const std::string option = section + "o=" + kText + "(\n#" + kText + ")}";
  const std::set<std::string> models = {
      "",
      "S{}",
      section + "}",
      option,
      option + " " + kText + "{}",
      option + " " + kText + "{" + kText + "=" + kText + "}",
  };
  // In place, and line by line through std::getline, which turns an allocation
  // that fails into a stream that fails. The first line comes so in any case.
  for (const std::size_t chunk : {1000U, 1U}) {
    DMConfig model;
    const auto load = [&] {
      ChunkBuffer buffer(text, chunk);
      std::istream in(&buffer);
      return DMConfigFile("", "").LoadConfig(&in, &model);
    };
    const auto look = [&](int result) {
      EXPECT_TRUE(result == kThrown || result == -5 || (chunk == 1 && result == -4)) << result;
      EXPECT_EQ(models.count(Render(&model)), 1U) << Render(&model);
    };
    EXPECT_GT(FailEachAllocation(
                  chunk == 1 ? "line by line" : "in place", [&] { model.Reset(); }, load, look),
              0);
  }
}

TEST(Exhaustion, LeavesTheClientsModeAsItWas) {
  const std::string text = "[lynx]\n" + kText + "=" + kText + "\ningest_mode=on\n";
  ::storage::config::ClientCfg cfg;
  const auto set = [&] { return cfg.SetCfg(text); };
  const auto look = [&](int result) {
    EXPECT_NE(result, 0);
    EXPECT_FALSE(cfg.ingest_mode_on_);
  };
  EXPECT_GT(FailEachAllocation(
                "SetCfg", [&] { cfg = {}; }, set, look),
            0);
}

}  // namespace
}  // namespace quarry::storage::dmconfig
