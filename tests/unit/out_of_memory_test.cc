// Every allocation of a whole load, save or setting fails in turn; the model's operations are in
// config_test.cc.

#include <gtest/gtest.h>

#include <set>

#include "config/client_config.h"
#include "dmconfig/config_file.h"
#include "tests/support/support.h"
#include "tests/support/test_allocator.h"

namespace quarry::storage::dmconfig {
namespace {

TEST(OutOfMemory, StopsTheReaderBetweenLines) {
  // "T" means the long text.
  const std::string text = ReplaceAll("\n#T\n[S]\n#T\no=T\n[T]\nT=1\nT=T\n", "T", kLongText);
  const std::string option = "S(\n#T){o=T(\n#T)}";
  const std::set<std::string> models = {"",     "S{}",           "S(\n#T){}",
                                        option, option + " T{}", option + " T{T=1}"};
  // In place, and line by line through std::getline, which turns an allocation that fails into a
  // stream that fails.
  for (const std::size_t chunk : {1000U, 1U}) {
    SCOPED_TRACE(chunk);
    DMConfig model;
    const auto load = [&] {
      ChunkBuffer buffer(text, chunk);
      std::istream in(&buffer);
      return DMConfigFile("", "").LoadConfig(&in, &model);
    };
    const auto check = [&](int result) {
      EXPECT_TRUE(result == kThrown || result == -5 || (chunk == 1 && result == -4)) << result;
      const std::string left = ReplaceAll(Render(&model), kLongText, "T");
      EXPECT_EQ(models.count(left), 1U) << left;
    };
    const auto failed = FailEachAllocation([&] { model.Reset(); }, load, check);
    EXPECT_GT(failed, 0);
  }
}

// The last line is not whole in what the first call reads.
TEST(OutOfMemory, StopsTheReaderOfAFile) {
  const TempFolder folder;
  folder.Write("f", "[s]\na=1\n" + std::string(8100, '\n') + "#" + std::string(99, 'c') + "\nb=2");
  DMConfig model;
  std::set<int> results;
  const auto load = [&] { return DMConfigFile(folder.Path("f"), "").LoadConfig(&model); };
  const auto check = [&](int result) {
    results.insert(result);
    EXPECT_TRUE(result != -4 || Render(&model) == "s{a=1}");
  };
  EXPECT_GT(FailEachAllocation([] {}, load, check), 0);
  EXPECT_EQ(results, (std::set<int>{kThrown, -5, -4}));
}

TEST(OutOfMemory, LeavesASavedModelAsItWas) {
  DMConfig model;
  model.SetOptionValue(kLongText, kLongText, kLongText, kLongText);
  const std::string before = Render(&model);
  const auto save = [&] {
    std::ostringstream out;
    return DMConfigFile("", "").DumpConfig(&out, &model);
  };
  const auto check = [&](int result) {
    EXPECT_NE(result, 0);
    EXPECT_EQ(Render(&model), before);
  };
  EXPECT_GT(FailEachAllocation([] {}, save, check), 0);
}

TEST(OutOfMemory, ReachesTheCallerOfAClientsConfiguration) {
  const std::string text =
      ReplaceAll("#T\n[T]\n#T\nT=T\n[lynx]\ningest_mode=on\nT=T", "T", kLongText);
  ::storage::config::ClientCfg cfg;
  const CerrCapture cerr;
  const auto check = [&](int result) {
    EXPECT_TRUE(result == kThrown || result == -5) << result;
    EXPECT_EQ(cerr.text(), "");
    EXPECT_FALSE(cfg.ingest_mode_on_);
  };
  EXPECT_GT(FailEachAllocation([&] { cfg = {}; }, [&] { return cfg.SetCfg(text); }, check), 0);
}

}  // namespace
}  // namespace quarry::storage::dmconfig
