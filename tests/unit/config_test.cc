#include "dmconfig/config.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>

#include "tests/support/support.h"
#include "tests/support/test_allocator.h"

namespace quarry::storage::dmconfig {
namespace {

// Every copy of these allocates, and so does replacing the old by the new.
const std::string kOld = kLongText;
const std::string kNew = kLongText + ", and longer than the old one";

// Writes kOld as "O" and kNew as "N".
std::string Abbreviate(const std::string& text) {
  return ReplaceAll(ReplaceAll(text, kNew, "N"), kOld, "O");
}

// A model and what its operations write to.
struct TestModel : DMConfig {
  std::string value = "-", comment = "-";
  std::list<std::string> names = {"-"};
};

TEST(DMConfig, RefusesEmptyNamesAndNullOutputs) {
  TestModel m;
  for (const auto& [section, option] : {std::pair("", "o"), std::pair("s", "")}) {
    EXPECT_EQ(m.SetOptionValue(section, option, "v"), -1);
    EXPECT_EQ(m.SetOptionValue(section, option, "v", "c"), -1);
    EXPECT_EQ(m.SetOptionComment(section, option, "c"), -1);
    EXPECT_EQ(m.GetOptionValue(section, option, &m.value, &m.comment), -1);
    EXPECT_EQ(m.DelOption(section, option), -1);
    EXPECT_EQ(m.DelOptionComment(section, option), -1);
  }
  EXPECT_EQ(m.HasSection(""), -1);
  EXPECT_EQ(m.GetSectionComment("", &m.comment), -1);
  EXPECT_EQ(m.SetSectionComment("", "c"), -1);
  EXPECT_EQ(m.DelSectionComment(""), -1);
  EXPECT_EQ(m.GetSectionOptionList("", &m.comment, &m.names), -1);
  EXPECT_EQ(m.GetSectionList(nullptr), -1);
  EXPECT_EQ(m.GetSectionComment("s", nullptr), -1);
  EXPECT_EQ(m.GetOptionValue("s", "o", nullptr, &m.comment), -1);
  EXPECT_EQ(m.GetOptionValue("s", "o", &m.value, nullptr), -1);
  EXPECT_EQ(m.GetSectionOptionList("s", nullptr, &m.names), -1);
  EXPECT_EQ(m.GetSectionOptionList("s", &m.comment, nullptr), -1);
  EXPECT_EQ(Render(&m), "");
  EXPECT_EQ(m.value + m.comment + m.names.front(), "---");
}

TEST(DMConfig, OperatesOnWhatIsThereAndCreatesWhatIsMissing) {
  struct Case {
    int (*operation)(TestModel&);
    int result;
    const char* model;                     // afterwards; before it is "S(O){x=O(O)}"
    int result_without_section = kThrown;  // when memory ran out while it was being created
    const char* outputs = "- - -";         // value, comment and the first name
  };
  const Case cases[] = {
      {[](auto& m) { return m.GetOptionMap(kNew) ? 0 : -5; }, 0, "S(O){x=O(O)} N{}", -5},
      {[](auto& m) { return m.GetSectionList(&m.names); }, 0, "S(O){x=O(O)}", kThrown, "- - S"},
      {[](auto& m) { return m.GetSectionComment("s", &m.comment); }, 0, "S(O){x=O(O)}", kThrown,
       "- O -"},
      {[](auto& m) { return m.GetSectionComment(kNew, &m.comment); }, 0, "S(O){x=O(O)} N{}", -5,
       "-  -"},
      {[](auto& m) { return m.SetSectionComment("s", kNew); }, 0, "S(N){x=O(O)}"},
      {[](auto& m) { return m.SetSectionComment("s", ""); }, 0, "S{x=O(O)}"},
      {[](auto& m) { return m.SetSectionComment(kNew, kNew); }, 0, "S(O){x=O(O)} N(N){}", -5},
      {[](auto& m) { return m.DelSectionComment("s"); }, 0, "S{x=O(O)}"},
      {[](auto& m) { return m.DelSectionComment(kNew); }, 0, "S(O){x=O(O)} N{}", 0},
      {[](auto& m) { return m.SetOptionValue("s", "X", kNew); }, 0, "S(O){x=N(O)}"},
      {[](auto& m) { return m.SetOptionValue(kNew, kNew, kNew); }, 0, "S(O){x=O(O)} N{N=N}", -5},
      {[](auto& m) { return m.SetOptionValue("s", "X", kNew, kNew); }, 0, "S(O){x=N(N)}"},
      {[](auto& m) { return m.SetOptionValue("s", "X", "", ""); }, 0, "S(O){x=}"},
      {[](auto& m) { return m.SetOptionValue(kNew, kNew, kNew, kNew); }, 0,
       "S(O){x=O(O)} N{N=N(N)}", -5},
      {[](auto& m) { return m.SetOptionComment("s", "X", kNew); }, 0, "S(O){x=O(N)}"},
      {[](auto& m) { return m.SetOptionComment(kNew, kNew, kNew); }, 0, "S(O){x=O(O)} N{N=(N)}",
       -5},
      {[](auto& m) { return m.GetOptionValue("s", "X", &m.value, &m.comment); }, 0, "S(O){x=O(O)}",
       kThrown, "O O -"},
      {[](auto& m) { return m.GetOptionValue(kNew, "x", &m.value, &m.comment); }, -7,
       "S(O){x=O(O)} N{}", -5},
      {[](auto& m) { return m.GetSectionOptionList("s", &m.comment, &m.names); }, 0, "S(O){x=O(O)}",
       kThrown, "- O x"},
      {[](auto& m) { return m.GetSectionOptionList(kNew, &m.comment, &m.names); }, 0,
       "S(O){x=O(O)} N{}", -5, "-  "},
      {[](auto& m) { return m.DelOption("s", "X"); }, 0, "S(O){}"},
      {[](auto& m) { return m.DelOption(kNew, "x"); }, 0, "S(O){x=O(O)} N{}", 0},
      {[](auto& m) { return m.DelOptionComment("s", "X"); }, 0, "S(O){x=O}"},
      {[](auto& m) { return m.DelOptionComment(kNew, "x"); }, 0, "S(O){x=O(O)} N{}", 0},
  };
  const std::string before = "S(O){x=O(O)}";
  const std::set<std::string> consistent = {before, before + " N{}", before + " N{N=}"};
  long faults = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE("case " + std::to_string(&c - cases));
    std::optional<TestModel> m;
    const auto prepare = [&] {
      m.emplace();
      m->SetOptionValue("S", "x", kOld, kOld);
      m->SetSectionComment("S", kOld);
    };
    const auto run = [&] { return c.operation(*m); };
    prepare();
    EXPECT_EQ(run(), c.result);
    EXPECT_EQ(Abbreviate(Render(&*m)), c.model);
    m->names.resize(1);
    EXPECT_EQ(Abbreviate(m->value + ' ' + m->comment + ' ' + m->names.front()), c.outputs);

    const auto prepare_empty_list = [&] { prepare(), m->names.clear(); };  // to fill it allocates
    faults += FailEachAllocation(prepare_empty_list, run, [&](int result) {
      const std::string left = Abbreviate(Render(&*m));
      EXPECT_EQ(consistent.count(left), 1U) << left;
      EXPECT_EQ(result, left == before ? c.result_without_section : kThrown);
      // Map and list name the same sections, and all can be used again.
      EXPECT_EQ(m->HasSection(kNew), left.find(" N{") == std::string::npos ? -6 : 0);
      EXPECT_EQ(m->SetOptionValue(kNew, kNew, "again"), 0);
      EXPECT_NE(Abbreviate(Render(&*m)).find("N=again"), std::string::npos);
    });
  }
  EXPECT_GT(faults, 100);
}

TEST(DMConfig, HandsOutRecordsThatStay) {
  DMConfig model;
  SectionOptionMap* const record = model.GetOptionMap("first");
  EXPECT_NE(model.GetOptionMap(""), nullptr);  // the only operation that accepts an empty name
  EXPECT_EQ(model.GetOptionMap("FIRST"), record);
  record->option_map["o"] = OptionValue("v", "c");
  EXPECT_EQ(Render(&model), "first{o=v(c)} {}");
}

}  // namespace
}  // namespace quarry::storage::dmconfig
