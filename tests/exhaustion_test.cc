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
const std::string kName = "a name that is longer than a small string";
const std::string kText = "a text that is longer than a small string";
const std::string kBefore = "S(" + kText + "){o=" + kText + "(" + kText + ")}";
const std::string kNewSection = kBefore + " " + kName + "{}";
const std::string kNewOption = "S(" + kText + "){" + kName + "= o=" + kText + "(" + kText + ")}";
const std::string kBoth = kBefore + " " + kName + "{" + kName + "=}";

constexpr int kThrown = 1;

struct ExhaustionCase {
  const char* name;
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

TEST(Exhaustion, LeavesTheModelWhole) {
  std::string value, comment;
  std::list<std::string> names;
  const auto clear = [&] {
    std::string().swap(value);
    std::string().swap(comment);
    names.clear();
  };
  const std::string fresh = kText + kText;
  const ExhaustionCase cases[] = {
      {"GetOptionMap", [&](auto* m) { return m->GetOptionMap(kName) ? 0 : -5; }, {-5}, {kBefore}},
      {"GetSectionList",
       [&](auto* m) {
         clear();
         return m->GetSectionList(&names);
       },
       {kThrown},
       {kBefore}},
      {"GetSectionComment",
       [&](auto* m) {
         clear();
         return m->GetSectionComment("S", &comment);
       },
       {kThrown},
       {kBefore}},
      {"GetSectionComment of a new section",
       [&](auto* m) { return m->GetSectionComment(kName, &comment); },
       {-5},
       {kBefore}},
      {"SetSectionComment", [&](auto* m) { return m->SetSectionComment("S", fresh); }, {kThrown}, {kBefore}},
      {"SetSectionComment of a new section",
       [&](auto* m) { return m->SetSectionComment(kName, fresh); },
       {-5, kThrown},
       {kBefore, kNewSection}},
      {"DelSectionComment of a new section", [&](auto* m) { return m->DelSectionComment(kName); }, {0}, {kBefore}},
      {"SetOptionValue of three", [&](auto* m) { return m->SetOptionValue("S", "o", fresh); }, {kThrown}, {kBefore}},
      {"SetOptionValue of three, new option",
       [&](auto* m) { return m->SetOptionValue("S", kName, fresh); },
       {kThrown},
       {kBefore, kNewOption}},
      {"SetOptionValue of three, new section",
       [&](auto* m) { return m->SetOptionValue(kName, kName, fresh); },
       {-5, kThrown},
       {kBefore, kNewSection, kBoth}},
      {"SetOptionValue of four",
       [&](auto* m) { return m->SetOptionValue("S", "o", fresh, fresh); },
       {kThrown},
       {kBefore}},
      {"SetOptionValue of four, new option",
       [&](auto* m) { return m->SetOptionValue("S", kName, fresh, fresh); },
       {kThrown},
       {kBefore, kNewOption}},
      {"SetOptionComment", [&](auto* m) { return m->SetOptionComment("S", "o", fresh); }, {kThrown}, {kBefore}},
      {"SetOptionComment, new option",
       [&](auto* m) { return m->SetOptionComment("S", kName, fresh); },
       {kThrown},
       {kBefore, kNewOption}},
      {"GetOptionValue",
       [&](auto* m) {
         clear();
         return m->GetOptionValue("S", "o", &value, &comment);
       },
       {kThrown},
       {kBefore}},
      {"GetOptionValue of a new section",
       [&](auto* m) { return m->GetOptionValue(kName, "o", &value, &comment); },
       {-5},
       {kBefore}},
      {"GetSectionOptionList",
       [&](auto* m) {
         clear();
         return m->GetSectionOptionList("S", &comment, &names);
       },
       {kThrown},
       {kBefore}},
      {"GetSectionOptionList of a new section",
       [&](auto* m) { return m->GetSectionOptionList(kName, &comment, &names); },
       {-5},
       {kBefore}},
      {"DelOption of a new section", [&](auto* m) { return m->DelOption(kName, "o"); }, {0}, {kBefore}},
      {"DelOptionComment of a new section", [&](auto* m) { return m->DelOptionComment(kName, "o"); }, {0}, {kBefore}},
      {"DumpConfig",
       [&](auto* m) {
         std::ostringstream out;
         return DMConfigFile("", "").DumpConfig(&out, m);
       },
       {kThrown, -4},
       {kBefore}},
  };
  for (const ExhaustionCase& c : cases) {
    Sweep(c, [](DMConfig* model) {
      model->SetOptionValue("S", "o", kText, kText);
      model->SetSectionComment("S", kText);
    });
  }
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
