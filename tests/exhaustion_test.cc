// Lets every allocation of every operation fail in turn, once and from then on,
// and looks at what is left.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "config/client_config.h"
#include "dmconfig/config.h"
#include "dmconfig/config_file.h"
#include "tests/chunk_buffer.h"
#include "tests/support.h"
#include "tests/test_allocator.h"

namespace quarry::storage::dmconfig {
namespace {

// Too long for a string's inner buffer, so that every copy allocates.
const std::string kName = "a_name_that_is_longer_than_a_small_string";
const std::string kText = "a_text_that_is_longer_than_a_small_string";
const std::string kBefore = "S(" + kText + "){o=" + kText + "(" + kText + ")}";
const std::string kNewSection = kBefore + " " + kName + "{}";
const std::string kNewOption = "S(" + kText + "){" + kName + "= o=" + kText + "(" + kText + ")}";
const std::string kBoth = kBefore + " " + kName + "{" + kName + "=}";

struct ExhaustionCase {
  std::string name;
  std::function<int(DMConfig*)> operation;
  std::vector<int> results;         // kThrown for std::bad_alloc
  std::vector<std::string> models;  // what may be left
};

// Runs the operation on a model that `fill` made, without memory.
void Sweep(const ExhaustionCase& c, const std::function<void(DMConfig*)>& fill) {
  const auto filled = [&] {
    auto model = std::make_unique<DMConfig>();
    fill(model.get());
    return model;
  };
  FailEachAllocation(c.name, filled, c.operation, [&](DMConfig* model, int result) {
    EXPECT_NE(std::find(c.results.begin(), c.results.end(), result), c.results.end()) << "result " << result;
    const std::string left = Render(model);
    EXPECT_NE(std::find(c.models.begin(), c.models.end(), left), c.models.end()) << left;
    // Map and list name the same sections, and all can be used again.
    const bool listed = left.find(kName + "{") != std::string::npos;
    EXPECT_EQ(model->HasSection(kName), listed ? 0 : -6);
    EXPECT_EQ(model->SetOptionValue(kName, kName, "again"), 0);
    EXPECT_NE(Render(model).find(kName + "=again"), std::string::npos);
  });
}

void FillBefore(DMConfig* model) {
  model->SetOptionValue("S", "o", kText, kText);
  model->SetSectionComment("S", kText);
}

// The same for an operation in words, in which "+" stands for a new name or text,
// on a model with the section "S", its option "o" and comments on both.
void SweepOperation(std::string words, std::vector<int> results, std::vector<std::string> models) {
  for (std::size_t at = words.find('+'); at != std::string::npos; at = words.find('+')) words.replace(at, 1, kName);
  const Operation operation(words);
  Outputs outputs;
  const auto run = [&](DMConfig* model) { return operation.Run(model, &outputs); };
  Sweep({words, run, std::move(results), std::move(models)}, [&](DMConfig* model) {
    FillBefore(model);
    outputs = Outputs();
    outputs.names.clear();
    // Short texts, so that to fill them allocates.
    std::string("old").swap(outputs.value);
    std::string("old").swap(outputs.comment);
  });
}

TEST(Exhaustion, LeavesTheModelWhole) {
  SweepOperation("GetOptionMap +", {-5}, {kBefore});
  SweepOperation("GetSectionList", {kThrown}, {kBefore});
  SweepOperation("GetSectionComment S", {kThrown}, {kBefore});
  SweepOperation("GetSectionComment +", {-5}, {kBefore});
  SweepOperation("SetSectionComment S ++", {kThrown}, {kBefore});
  SweepOperation("SetSectionComment + +", {-5, kThrown}, {kBefore, kNewSection});
  SweepOperation("DelSectionComment +", {0}, {kBefore});
  SweepOperation("SetOptionValue S o ++", {kThrown}, {kBefore});
  SweepOperation("SetOptionValue S + +", {kThrown}, {kBefore, kNewOption});
  SweepOperation("SetOptionValue + + +", {-5, kThrown}, {kBefore, kNewSection, kBoth});
  SweepOperation("SetOptionValue S o ++ ++", {kThrown}, {kBefore});
  SweepOperation("SetOptionValue S + + +", {kThrown}, {kBefore, kNewOption});
  SweepOperation("SetOptionComment S o ++", {kThrown}, {kBefore});
  SweepOperation("SetOptionComment S + +", {kThrown}, {kBefore, kNewOption});
  SweepOperation("GetOptionValue S o", {kThrown}, {kBefore});
  SweepOperation("GetOptionValue + o", {-5}, {kBefore});
  SweepOperation("GetSectionOptionList S", {kThrown}, {kBefore});
  SweepOperation("GetSectionOptionList +", {-5}, {kBefore});
  SweepOperation("DelOption + o", {0}, {kBefore});
  SweepOperation("DelOptionComment + o", {0}, {kBefore});
}

TEST(Exhaustion, StopsTheWriter) {
  const auto dump = [](DMConfig* model) {
    std::ostringstream out;
    return DMConfigFile("", "").DumpConfig(&out, model);
  };
  Sweep({"DumpConfig", dump, {kThrown, -4}, {kBefore}}, FillBefore);
}

TEST(Exhaustion, StopsTheReaderBetweenLines) {
  const std::string text = "\n#" + kText + "\n[S]\n#" + kText + "\no=" + kText + "\n[" + kName + "]\n" + kName + "=" +
                           kText + "\n" + kName + "=" + kText + kText + "\n";
  const std::string section = "S(\n#" + kText + "){";
  const std::string option = section + "o=" + kText + "(\n#" + kText + ")} ";
  const std::vector<std::string> models = {
      "",
      "S{}",
      section + "}",
      section + "o=" + kText + "(\n#" + kText + ")}",
      option + kName + "{}",
      option + kName + "{" + kName + "=" + kText + "}",
  };
  // In place, and line by line through std::getline, which turns an allocation
  // that fails into a stream that fails. The first line comes so in any case.
  for (const std::size_t chunk : {1000U, 1U}) {
    Sweep({chunk == 1 ? "line by line" : "in place",
           [&](DMConfig* model) {
             ChunkBuffer buffer(text, chunk);
             std::istream in(&buffer);
             return DMConfigFile("", "").LoadConfig(&in, model);
           },
           chunk == 1 ? std::vector<int>{-5, kThrown, -4} : std::vector<int>{-5, kThrown}, models},
          [](DMConfig*) {});
  }
}

TEST(Exhaustion, LeavesTheClientsModeAsItWas) {
  const std::string text = "[lynx]\n" + kName + "=" + kText + "\ningest_mode=on\n";
  FailEachAllocation(
      "SetCfg", [] { return std::make_unique<::storage::config::ClientCfg>(); },
      [&](::storage::config::ClientCfg* cfg) { return cfg->SetCfg(text); },
      [](::storage::config::ClientCfg* cfg, int result) {
        EXPECT_NE(result, 0);
        EXPECT_FALSE(cfg->ingest_mode_on_);
      });
}

}  // namespace
}  // namespace quarry::storage::dmconfig
