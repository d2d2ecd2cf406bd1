#include "dmconfig/config.h"

#include <gtest/gtest.h>

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
      // Eight bytes at a time:
      {"word @AZ[", "WORD @az[", false, false},
      {"word \xC1 word", "word \xE1 word", true, false},
      {"word\0one"s, "WORD\0two"s, false, false},
      {"wordword", "WORDWORD\0x"s, false, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.left + " and " + c.right);
    EXPECT_EQ(StringCaseCmp()(c.left, c.right), c.less);
    EXPECT_EQ(StringCaseCmp()(c.right, c.left), c.greater);
  }
}

TEST(DMConfig, RefusesEmptyNamesAndNullOutputs) {
  for (const char* words : {"HasSection ''",
                            "GetSectionList null",
                            "GetSectionComment ''",
                            "GetSectionComment s null",
                            "SetSectionComment '' c",
                            "DelSectionComment ''",
                            "SetOptionValue '' o v",
                            "SetOptionValue s '' v",
                            "SetOptionValue '' o v c",
                            "SetOptionValue s '' v c",
                            "SetOptionComment '' o c",
                            "SetOptionComment s '' c",
                            "GetOptionValue '' o",
                            "GetOptionValue s ''",
                            "GetOptionValue s o null -",
                            "GetOptionValue s o - null",
                            "GetSectionOptionList ''",
                            "GetSectionOptionList s null -",
                            "GetSectionOptionList s - null",
                            "DelOption '' o",
                            "DelOption s ''",
                            "DelOptionComment '' o",
                            "DelOptionComment s ''"}) {
    SCOPED_TRACE(words);
    DMConfig model;
    Outputs outputs;
    EXPECT_EQ(Operation(words).Run(&model, &outputs), -1);
    EXPECT_EQ(Render(&model), "");
    EXPECT_EQ(outputs.value + outputs.comment + outputs.names.front(), "oldoldold");
  }
}

TEST(DMConfig, OperatesOnWhatIsThereAndCreatesWhatIsMissing) {
  struct Case {
    const char* operation;
    int result;
    const char* model;    // afterwards; before it is "S(c){o=v(d)}"
    const char* outputs;  // value, comment and the first name
  };
  const Case cases[] = {
      {"HasSection s", 0, "S(c){o=v(d)}", "old old old"},
      {"HasSection New", -6, "S(c){o=v(d)}", "old old old"},
      {"GetSectionList", 0, "S(c){o=v(d)}", "old old S"},
      {"GetSectionComment s", 0, "S(c){o=v(d)}", "old c old"},
      {"GetSectionComment New", 0, "S(c){o=v(d)} New{}", "old  old"},
      {"SetSectionComment s n", 0, "S(n){o=v(d)}", "old old old"},
      {"SetSectionComment s ''", 0, "S{o=v(d)}", "old old old"},
      {"SetSectionComment New n", 0, "S(c){o=v(d)} New(n){}", "old old old"},
      {"DelSectionComment s", 0, "S{o=v(d)}", "old old old"},
      {"DelSectionComment New", 0, "S(c){o=v(d)} New{}", "old old old"},
      {"SetOptionValue s O n", 0, "S(c){o=n(d)}", "old old old"},
      {"SetOptionValue New Fresh n", 0, "S(c){o=v(d)} New{Fresh=n}", "old old old"},
      {"SetOptionValue s O n e", 0, "S(c){o=n(e)}", "old old old"},
      {"SetOptionValue s O '' ''", 0, "S(c){o=}", "old old old"},
      {"SetOptionValue New Fresh n e", 0, "S(c){o=v(d)} New{Fresh=n(e)}", "old old old"},
      {"SetOptionComment s O e", 0, "S(c){o=v(e)}", "old old old"},
      {"SetOptionComment New Fresh e", 0, "S(c){o=v(d)} New{Fresh=(e)}", "old old old"},
      {"GetOptionValue s O", 0, "S(c){o=v(d)}", "v d old"},
      {"GetOptionValue New Fresh", -7, "S(c){o=v(d)} New{}", "old old old"},
      {"GetSectionOptionList s", 0, "S(c){o=v(d)}", "old c o"},
      {"GetSectionOptionList New", 0, "S(c){o=v(d)} New{}", "old  "},
      {"DelOption s O", 0, "S(c){}", "old old old"},
      {"DelOption New Fresh", 0, "S(c){o=v(d)} New{}", "old old old"},
      {"DelOptionComment s O", 0, "S(c){o=v}", "old old old"},
      {"DelOptionComment New Fresh", 0, "S(c){o=v(d)} New{}", "old old old"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.operation);
    DMConfig model;
    model.SetOptionValue("S", "o", "v", "d");
    model.SetSectionComment("S", "c");
    Outputs out;
    EXPECT_EQ(Operation(c.operation).Run(&model, &out), c.result);
    EXPECT_EQ(Render(&model), c.model);
    out.names.resize(1);
    EXPECT_EQ(out.value + ' ' + out.comment + ' ' + out.names.front(), c.outputs);
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
