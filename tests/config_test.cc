#include "dmconfig/config.h"

#include <gtest/gtest.h>

#include <functional>
#include <type_traits>

#include "tests/support.h"

namespace quarry::storage::dmconfig {
namespace {

using std::string_literals::operator""s;

static_assert(!std::is_copy_constructible_v<DMConfig> && !std::is_copy_assignable_v<DMConfig> &&
              !std::is_move_constructible_v<DMConfig> && !std::is_move_assignable_v<DMConfig>);

TEST(StringCaseCmp, OrdersByFoldedUnsignedBytesUpToNul) {
  struct Case {
    std::string left, right;
    bool less, greater;
  };
  const Case cases[] = {
      {"Client", "cLIENT", false, false},
      {"alpha", "Zeta", true, false},
      {"_x", "A", true, false},
      {"ab", "abc", true, false},
      {"", "a", true, false},
      {"z", "\x80", true, false},
      {"\xC3\x84", "\xC3\xA4", true, false},  // no folding beyond ASCII
      {"@", "`", true, false},                // the neighbours of A
      {"[", "{", true, false},                // and of Z
      {"a", "a ", true, false},
      {"a\0b"s, "A\0c"s, false, false},
      {"a\0b"s, "a", false, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.left + " and " + c.right);
    EXPECT_EQ(StringCaseCmp()(c.left, c.right), c.less);
    EXPECT_EQ(StringCaseCmp()(c.right, c.left), c.greater);
  }
}

// An operation of the model with outputs that start as "old".
struct Outputs {
  std::string value = "old", comment = "old";
  std::list<std::string> names = {"old"};
};
using Operation = std::function<int(DMConfig*, Outputs*)>;

TEST(DMConfig, RefusesEmptyNamesAndNullOutputs) {
  const Operation operations[] = {
      [](auto* m, auto*) { return m->HasSection(""); },
      [](auto* m, auto*) { return m->GetSectionList(nullptr); },
      [](auto* m, auto* o) { return m->GetSectionComment("", &o->comment); },
      [](auto* m, auto*) { return m->GetSectionComment("s", nullptr); },
      [](auto* m, auto*) { return m->SetSectionComment("", "c"); },
      [](auto* m, auto*) { return m->DelSectionComment(""); },
      [](auto* m, auto*) { return m->SetOptionValue("", "o", "v"); },
      [](auto* m, auto*) { return m->SetOptionValue("s", "", "v"); },
      [](auto* m, auto*) { return m->SetOptionValue("", "o", "v", "c"); },
      [](auto* m, auto*) { return m->SetOptionValue("s", "", "v", "c"); },
      [](auto* m, auto*) { return m->SetOptionComment("", "o", "c"); },
      [](auto* m, auto*) { return m->SetOptionComment("s", "", "c"); },
      [](auto* m, auto* o) { return m->GetOptionValue("", "o", &o->value, &o->comment); },
      [](auto* m, auto* o) { return m->GetOptionValue("s", "", &o->value, &o->comment); },
      [](auto* m, auto* o) { return m->GetOptionValue("s", "o", nullptr, &o->comment); },
      [](auto* m, auto* o) { return m->GetOptionValue("s", "o", &o->value, nullptr); },
      [](auto* m, auto* o) { return m->GetSectionOptionList("", &o->comment, &o->names); },
      [](auto* m, auto* o) { return m->GetSectionOptionList("s", nullptr, &o->names); },
      [](auto* m, auto* o) { return m->GetSectionOptionList("s", &o->comment, nullptr); },
      [](auto* m, auto*) { return m->DelOption("", "o"); },
      [](auto* m, auto*) { return m->DelOption("s", ""); },
      [](auto* m, auto*) { return m->DelOptionComment("", "o"); },
      [](auto* m, auto*) { return m->DelOptionComment("s", ""); },
  };
  int number = 0;
  for (const Operation& operation : operations) {
    SCOPED_TRACE(number++);
    DMConfig model;
    Outputs outputs;
    EXPECT_EQ(operation(&model, &outputs), -1);
    EXPECT_EQ(Render(&model), "");
    EXPECT_EQ(outputs.value + outputs.comment + outputs.names.front(), "oldoldold");
  }
}

// Each operation once on a model with the section "S" and its option "o", and
// once on names that are missing.
TEST(DMConfig, OperatesOnWhatIsThereAndCreatesWhatIsMissing) {
  struct Case {
    const char* name;
    std::function<int(DMConfig*, Outputs*, const char* section, const char* option)> operation;
    int present, missing;
    const char* present_model;
    const char* missing_model;
    const char* outputs;  // value, comment and names when present
  };
  const char* const kSame = "S(c){o=v(d)}";
  const Case cases[] = {
      {"HasSection", [](auto* m, auto*, auto* s, auto*) { return m->HasSection(s); }, 0, -6, kSame, kSame,
       "old old old"},
      {"GetSectionComment", [](auto* m, auto* o, auto* s, auto*) { return m->GetSectionComment(s, &o->comment); }, 0, 0,
       kSame, "S(c){o=v(d)} New{}", "old c old"},
      {"SetSectionComment", [](auto* m, auto*, auto* s, auto*) { return m->SetSectionComment(s, "n"); }, 0, 0,
       "S(n){o=v(d)}", "S(c){o=v(d)} New(n){}", "old old old"},
      {"SetSectionComment to nothing", [](auto* m, auto*, auto* s, auto*) { return m->SetSectionComment(s, ""); }, 0, 0,
       "S{o=v(d)}", "S(c){o=v(d)} New{}", "old old old"},
      {"DelSectionComment", [](auto* m, auto*, auto* s, auto*) { return m->DelSectionComment(s); }, 0, 0, "S{o=v(d)}",
       "S(c){o=v(d)} New{}", "old old old"},
      {"SetOptionValue of three", [](auto* m, auto*, auto* s, auto* o) { return m->SetOptionValue(s, o, "n"); }, 0, 0,
       "S(c){o=n(d)}", "S(c){o=v(d)} New{Fresh=n}", "old old old"},
      {"SetOptionValue of four", [](auto* m, auto*, auto* s, auto* o) { return m->SetOptionValue(s, o, "n", "e"); }, 0,
       0, "S(c){o=n(e)}", "S(c){o=v(d)} New{Fresh=n(e)}", "old old old"},
      {"SetOptionValue without a comment",
       [](auto* m, auto*, auto* s, auto* o) { return m->SetOptionValue(s, o, "", ""); }, 0, 0, "S(c){o=}",
       "S(c){o=v(d)} New{Fresh=}", "old old old"},
      {"SetOptionComment", [](auto* m, auto*, auto* s, auto* o) { return m->SetOptionComment(s, o, "e"); }, 0, 0,
       "S(c){o=v(e)}", "S(c){o=v(d)} New{Fresh=(e)}", "old old old"},
      {"GetOptionValue",
       [](auto* m, auto* out, auto* s, auto* o) { return m->GetOptionValue(s, o, &out->value, &out->comment); }, 0, -7,
       kSame, "S(c){o=v(d)} New{}", "v d old"},
      {"GetSectionOptionList",
       [](auto* m, auto* out, auto* s, auto*) { return m->GetSectionOptionList(s, &out->comment, &out->names); }, 0, 0,
       kSame, "S(c){o=v(d)} New{}", "old c o"},
      {"DelOption", [](auto* m, auto*, auto* s, auto* o) { return m->DelOption(s, o); }, 0, 0, "S(c){}",
       "S(c){o=v(d)} New{}", "old old old"},
      {"DelOptionComment", [](auto* m, auto*, auto* s, auto* o) { return m->DelOptionComment(s, o); }, 0, 0,
       "S(c){o=v}", "S(c){o=v(d)} New{}", "old old old"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    for (const bool present : {true, false}) {
      DMConfig model;
      model.SetOptionValue("S", "o", "v", "d");
      model.SetSectionComment("S", "c");
      Outputs out;
      EXPECT_EQ(c.operation(&model, &out, present ? "s" : "New", present ? "O" : "Fresh"),
                present ? c.present : c.missing);
      EXPECT_EQ(Render(&model), present ? c.present_model : c.missing_model);
      if (!present) continue;
      EXPECT_EQ(out.value + ' ' + out.comment + ' ' + out.names.front(), c.outputs);
    }
  }
}

TEST(DMConfig, LeavesOtherOptionsAndOutputsWhenOneIsMissing) {
  DMConfig model;
  model.SetOptionValue("s", "b", "1", "c");
  Outputs out;
  EXPECT_EQ(model.GetOptionValue("s", "a", &out.value, &out.comment), -7);
  EXPECT_EQ(out.value + out.comment, "oldold");
  EXPECT_EQ(model.DelOptionComment("s", "a"), 0);
  EXPECT_EQ(model.DelOption("s", "a"), 0);
  EXPECT_EQ(Render(&model), "s{b=1(c)}");
}

TEST(DMConfig, KeepsSectionsInOrderOfCreationAndOptionsInOrderOfNames) {
  DMConfig model;
  for (const char* name : {"b", "A", "c", "B", "_x", "C", "a "}) {
    model.SetOptionValue("only", name, "");
    model.GetOptionMap(name);
  }
  EXPECT_EQ(Render(&model), "only{_x= A= a = b= c=} b{} A{} c{} _x{} a {}");
  std::list<std::string> sections = {"gone"};
  EXPECT_EQ(model.GetSectionList(&sections), 0);
  EXPECT_EQ(sections, (std::list<std::string>{"only", "b", "A", "c", "_x", "a "}));
}

TEST(DMConfig, TakesAnEmptySectionNameInGetOptionMapOnly) {
  DMConfig model;
  ASSERT_NE(model.GetOptionMap(""), nullptr);
  EXPECT_EQ(model.HasSection(""), -1);
  EXPECT_EQ(Render(&model), "{}");
}

TEST(DMConfig, ComparesNamesUpToNulAndKeepsThemWhole) {
  DMConfig model;
  model.SetOptionValue("s\0one"s, "o\0one"s, "1");
  model.SetOptionValue("S\0two"s, "O", "2");
  EXPECT_EQ(Render(&model), "s\0one{o\0one=2}"s);
}

TEST(DMConfig, HandsOutRecordsThatStayUntilReset) {
  DMConfig model;
  SectionOptionMap* record = model.GetOptionMap("first");
  for (int i = 0; i < 100; ++i) model.GetOptionMap(std::to_string(i));
  EXPECT_EQ(model.GetOptionMap("FIRST"), record);
  record->comment = "c";
  record->option_map["o"] = OptionValue("v", "d");
  std::string value, comment;
  EXPECT_EQ(model.GetOptionValue("first", "o", &value, &comment), 0);
  EXPECT_EQ(value + comment, "vd");

  model.Reset();
  model.Reset();
  EXPECT_EQ(Render(&model), "");
  EXPECT_EQ(model.HasSection("first"), -6);
  model.SetOptionValue("again", "o", "v");
  EXPECT_EQ(Render(&model), "again{o=v}");
}

}  // namespace
}  // namespace quarry::storage::dmconfig
