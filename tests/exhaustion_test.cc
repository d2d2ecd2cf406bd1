// Lets every allocation of every operation fail in turn, once and from then on,
// and looks at what is left.

#include <gtest/gtest.h>

#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "dmconfig/config.h"
#include "dmconfig/config_file.h"
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

constexpr int kThrown = 1;

struct ExhaustionCase {
  std::string name;
  std::function<int(DMConfig*)> operation;
  std::vector<int> results;         // kThrown for std::bad_alloc
  std::vector<std::string> models;  // what may be left
};

// Runs the operation with its n-th allocation failing, on a model that `fill`
// made, for n = 1, 2, ... until the operation does not need that many.
void Sweep(const ExhaustionCase& c, const std::function<void(DMConfig*)>& fill) {
  SCOPED_TRACE(c.name);
  const long faults_before = AllocationFaults();
  for (const bool persistent : {false, true}) {
    bool reached = true;
    for (long n = 1; reached; ++n) {
      DMConfig model;
      fill(&model);
      const long faults_so_far = AllocationFaults();
      int result = kThrown;
      FailAllocation(n, persistent);
      try {
        result = c.operation(&model);
      } catch (const std::bad_alloc&) {
      }
      FailAllocation(0);
      reached = AllocationFaults() != faults_so_far;
      if (!reached) continue;

      SCOPED_TRACE(n);
      EXPECT_NE(std::find(c.results.begin(), c.results.end(), result), c.results.end()) << "result " << result;
      const std::string left = Render(&model);
      EXPECT_NE(std::find(c.models.begin(), c.models.end(), left), c.models.end()) << left;
      // Map and list name the same sections, and all can be used again.
      const bool listed = left.find(kName + "{") != std::string::npos;
      EXPECT_EQ(model.HasSection(kName), listed ? 0 : -6);
      EXPECT_EQ(model.SetOptionValue(kName, kName, "again"), 0);
      EXPECT_NE(Render(&model).find(kName + "=again"), std::string::npos);
    }
  }
  EXPECT_GT(AllocationFaults(), faults_before);
  std::cout << c.name << ": " << AllocationFaults() - faults_before << " allocations failed\n";
}

// The same for an operation in words, in which "+" stands for a new name or text,
// on a model with the section "S", its option "o" and comments on both.
void SweepOperation(std::string words, std::vector<int> results, std::vector<std::string> models) {
  for (std::size_t at = words.find('+'); at != std::string::npos; at = words.find('+')) words.replace(at, 1, kName);
  const Operation operation(words);
  Outputs outputs;
  const auto run = [&](DMConfig* model) { return operation.Run(model, &outputs); };
  Sweep({words, run, std::move(results), std::move(models)}, [&](DMConfig* model) {
    model->SetOptionValue("S", "o", kText, kText);
    model->SetSectionComment("S", kText);
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
  Sweep({"DumpConfig", dump, {kThrown, -4}, {"S(" + kText + "){}"}},
        [](DMConfig* model) { model->SetSectionComment("S", kText); });
}

TEST(Exhaustion, StopsTheReaderBetweenLines) {
  const std::string text = "#" + kText + "\n[S]\n#" + kText + "\no=" + kText + "\n[" + kName + "]\n" + kName + "=" +
                           kText + "\n" + kName + "=" + kText + kText + "\n";
  const std::string section = "S(\n#" + kText + "){";
  const std::string option = section + "o=" + kText + "(\n#" + kText + ")} ";
  const std::vector<std::string> models = {
      "",
      "S{}",
      section + "}",
      section + "o=}",
      section + "o=" + kText + "(\n#" + kText + ")}",
      option + kName + "{}",
      option + kName + "{" + kName + "=}",
      option + kName + "{" + kName + "=" + kText + "}",
  };
  // In place, and line by line through std::getline, which turns an allocation
  // that fails into a stream that fails.
  for (const std::size_t chunk : {1000U, 1U}) {
    Sweep({chunk == 1 ? "line by line" : "in place",
           [&](DMConfig* model) {
             ChunkBuffer buffer(text, chunk);
             std::istream in(&buffer);
             return DMConfigFile("", "").LoadConfig(&in, model);
           },
           {-5, kThrown, -4},
           models},
          [](DMConfig*) {});
  }
}

}  // namespace
}  // namespace quarry::storage::dmconfig
