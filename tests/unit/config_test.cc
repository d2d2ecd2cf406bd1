#include "dmconfig/config.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <set>
#include <type_traits>
#include <vector>

#include "tests/support/support.h"
#include "tests/support/test_allocator.h"

namespace quarry::storage::dmconfig {
namespace {

static_assert(!std::is_copy_constructible_v<DMConfig> && !std::is_copy_assignable_v<DMConfig> &&
              !std::is_move_constructible_v<DMConfig> && !std::is_move_assignable_v<DMConfig>);

// Too long for a string's inner buffer, so that every copy allocates.
const std::string kName = "a_name_that_is_longer_than_a_small_string";
const std::string kText = "a_text_that_is_longer_than_a_small_string";

// "+" stands for a new name or text, "*" for an old text.
std::string Long(std::string short_form) {
  for (std::size_t at; (at = short_form.find_first_of("+*")) != std::string::npos;) {
    short_form.replace(at, 1, short_form[at] == '+' ? kName : kText);
  }
  return short_form;
}

// What operations of the model write to.
struct Outputs {
  std::string value = "old", comment = "old";
  std::list<std::string> names = {"old"};
};

// An operation of the model in words, taken apart: "SetOptionValue s o v".
// "''" is an empty text; "null" at the end stands for a null output, as the
// first ("null -") or the last one ("- null" or "null").
struct Operation {
  explicit Operation(const std::string& words);

  int Run(DMConfig* model, Outputs* outputs) const;

  std::string name, section, option, value, comment;
  bool has_comment, first_null, last_null;
};

Operation::Operation(const std::string& words) {
  std::istringstream in(words);
  std::vector<std::string> all(6);
  std::size_t count = 0;
  while (count < all.size() && in >> all[count]) ++count;
  const auto null = std::find(all.begin(), all.end(), "null");
  last_null = null != all.end() && null == all.begin() + static_cast<std::ptrdiff_t>(count) - 1;
  first_null = null != all.end() && !last_null;
  for (std::string& word : all) word = word == "''" ? "" : word;
  name = all[0];
  section = all[1];
  option = all[2];
  value = all[3];
  comment = all[4];
  has_comment = count == 5;
}

int Operation::Run(DMConfig* model, Outputs* out) const {
  std::string* const first = first_null                 ? nullptr
                             : name == "GetOptionValue" ? &out->value
                                                        : &out->comment;
  std::string* const last = last_null ? nullptr : &out->comment;
  std::list<std::string>* const names = last_null ? nullptr : &out->names;
  if (name == "GetOptionMap") return model->GetOptionMap(section) == nullptr ? -5 : 0;
  if (name == "HasSection") return model->HasSection(section);
  if (name == "GetSectionList") return model->GetSectionList(names);
  if (name == "GetSectionComment") return model->GetSectionComment(section, last);
  if (name == "SetSectionComment") return model->SetSectionComment(section, option);
  if (name == "DelSectionComment") return model->DelSectionComment(section);
  if (name == "SetOptionValue" && has_comment)
    return model->SetOptionValue(section, option, value, comment);
  if (name == "SetOptionValue") return model->SetOptionValue(section, option, value);
  if (name == "SetOptionComment") return model->SetOptionComment(section, option, value);
  if (name == "GetOptionValue") return model->GetOptionValue(section, option, first, last);
  if (name == "GetSectionOptionList") return model->GetSectionOptionList(section, first, names);
  if (name == "DelOption") return model->DelOption(section, option);
  if (name == "DelOptionComment") return model->DelOptionComment(section, option);
  ADD_FAILURE() << "no operation " << name;
  return 1;
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
    const char* model;    // afterwards; before it is "S(*){o=*(*)}"
    const char* outputs;  // value, comment and the first name
  };
  const Case cases[] = {
      {"HasSection s", 0, "S(*){o=*(*)}", "old old old"},
      {"HasSection +", -6, "S(*){o=*(*)}", "old old old"},
      {"GetOptionMap +", 0, "S(*){o=*(*)} +{}", "old old old"},
      {"GetSectionList", 0, "S(*){o=*(*)}", "old old S"},
      {"GetSectionComment s", 0, "S(*){o=*(*)}", "old * old"},
      {"GetSectionComment +", 0, "S(*){o=*(*)} +{}", "old  old"},
      {"SetSectionComment s ++", 0, "S(++){o=*(*)}", "old old old"},
      {"SetSectionComment s ''", 0, "S{o=*(*)}", "old old old"},
      {"SetSectionComment + ++", 0, "S(*){o=*(*)} +(++){}", "old old old"},
      {"DelSectionComment s", 0, "S{o=*(*)}", "old old old"},
      {"DelSectionComment +", 0, "S(*){o=*(*)} +{}", "old old old"},
      {"SetOptionValue s O ++", 0, "S(*){o=++(*)}", "old old old"},
      {"SetOptionValue s + ++", 0, "S(*){+=++ o=*(*)}", "old old old"},
      {"SetOptionValue + + ++", 0, "S(*){o=*(*)} +{+=++}", "old old old"},
      {"SetOptionValue s O ++ ++", 0, "S(*){o=++(++)}", "old old old"},
      {"SetOptionValue s O '' ''", 0, "S(*){o=}", "old old old"},
      {"SetOptionValue s + ++ ++", 0, "S(*){+=++(++) o=*(*)}", "old old old"},
      {"SetOptionValue + + ++ ++", 0, "S(*){o=*(*)} +{+=++(++)}", "old old old"},
      {"SetOptionComment s O ++", 0, "S(*){o=*(++)}", "old old old"},
      {"SetOptionComment s + ++", 0, "S(*){+=(++) o=*(*)}", "old old old"},
      {"SetOptionComment + + ++", 0, "S(*){o=*(*)} +{+=(++)}", "old old old"},
      {"GetOptionValue s O", 0, "S(*){o=*(*)}", "* * old"},
      {"GetOptionValue s +", -7, "S(*){o=*(*)}", "old old old"},
      {"GetOptionValue + +", -7, "S(*){o=*(*)} +{}", "old old old"},
      {"GetSectionOptionList s", 0, "S(*){o=*(*)}", "old * o"},
      {"GetSectionOptionList +", 0, "S(*){o=*(*)} +{}", "old  "},
      {"DelOption s O", 0, "S(*){}", "old old old"},
      {"DelOption s +", 0, "S(*){o=*(*)}", "old old old"},
      {"DelOption + +", 0, "S(*){o=*(*)} +{}", "old old old"},
      {"DelOptionComment s O", 0, "S(*){o=*}", "old old old"},
      {"DelOptionComment s +", 0, "S(*){o=*(*)}", "old old old"},
      {"DelOptionComment + +", 0, "S(*){o=*(*)} +{}", "old old old"},
  };
  std::optional<DMConfig> model;
  Outputs out;
  const auto prepare = [&] {
    model.emplace();
    model->SetOptionValue("S", "o", kText, kText);
    model->SetSectionComment("S", kText);
    out = {};
  };
  const std::string before = Long("S(*){o=*(*)}");
  const std::set<std::string> whole = {before, before + Long(" +{}"), before + Long(" +{+=}"),
                                       Long("S(*){+= o=*(*)}")};
  long faults = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.operation);
    const Operation operation(Long(c.operation));
    const auto run = [&] { return operation.Run(&*model, &out); };
    prepare();
    EXPECT_EQ(run(), c.result);
    EXPECT_EQ(Render(&*model), Long(c.model));
    out.names.resize(1);
    EXPECT_EQ(out.value + ' ' + out.comment + ' ' + out.names.front(), Long(c.outputs));

    const auto prepare_empty = [&] {
      prepare();
      out.names.clear();  // to fill it allocates
    };
    faults += FailEachAllocation(c.operation, prepare_empty, run, [&](int result) {
      const std::string left = Render(&*model);
      EXPECT_EQ(whole.count(left), 1U) << left;
      const bool without_section = operation.section == kName && left == before;
      EXPECT_EQ(result, !without_section ? kThrown : operation.name.find("Del") == 0 ? 0 : -5);
      // Map and list name the same sections, and all can be used again.
      EXPECT_EQ(model->HasSection(kName), left.find(kName + '{') == std::string::npos ? -6 : 0);
      EXPECT_EQ(model->SetOptionValue(kName, kName, "again"), 0);
      EXPECT_NE(Render(&*model).find(kName + "=again"), std::string::npos);
    });
  }
  EXPECT_GT(faults, 100);
}

TEST(DMConfig, TakesAnEmptySectionNameInGetOptionMapOnly) {
  DMConfig model;
  ASSERT_NE(model.GetOptionMap(""), nullptr);
  EXPECT_EQ(model.HasSection(""), -1);
  EXPECT_EQ(Render(&model), "{}");
}

TEST(DMConfig, HandsOutRecordsThatStay) {
  DMConfig model;
  SectionOptionMap* record = model.GetOptionMap("first");
  for (int i = 0; i < 100; ++i) model.GetOptionMap(std::to_string(i));
  EXPECT_EQ(model.GetOptionMap("FIRST"), record);
  record->comment = "c";
  record->option_map["o"] = OptionValue("v", "d");
  std::string value, comment;
  EXPECT_EQ(model.GetOptionValue("first", "o", &value, &comment), 0);
  EXPECT_EQ(value + comment, "vd");
}

}  // namespace
}  // namespace quarry::storage::dmconfig
