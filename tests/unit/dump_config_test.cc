#include <gtest/gtest.h>

#include <functional>

#include "dmconfig/config_file.h"
#include "tests/support/support.h"

namespace quarry::storage::dmconfig {
namespace {

using std::string_literals::operator""s;

void FillWithAll(DMConfig* model) {
  model->SetSectionComment("General", "main settings");
  model->SetOptionValue("General", "port", "443", "\n;tcp port");
  model->SetOptionValue("General", "Host", "alpha");
  model->SetOptionValue("lynx", "ingest_mode", "on\r");
}

const std::string kAll =
    "#main settings\n[General]\nHost=alpha\n#\n;tcp port\nport=443\n[lynx]\ningest_mode=on\r\n";

TEST(DumpConfig, WritesSectionsAndOptionsInTheirOrders) {
  struct Case {
    const char* name;
    std::function<void(DMConfig*)> fill;
    int status;
    std::string text, diagnostic;
  };
  const Case cases[] = {
      {"orders",
       [](auto* m) {
         for (const char* name : {"b", "C", "a"}) m->SetOptionValue("z", name, "");
         std::string value, comment;
         m->GetOptionValue("A", "x", &value, &comment);  // creates the section
       },
       0, "[z]\na=\nb=\nC=\n[A]\n", ""},
      {"an empty section name",
       [](auto* m) {
         m->SetOptionValue("a", "x", "1");
         m->GetOptionMap("");
         m->SetOptionValue("b", "y", "2");
       },
       -1, "[a]\nx=1\n", "Failed to get option list for section: \n"},
      {"an empty option name",
       [](auto* m) {
         m->GetOptionMap("a")->option_map[""].value = "lost";
         m->SetOptionValue("a", "x", "1");
         m->SetOptionValue("b", "y", "2");
       },
       -1, "[a]\n[b]\ny=2\n", "Failed to get value for option: \n"},
      {"texts that do not read back",
       [](auto* m) { m->SetOptionValue("a]", " x", "1\n\0y "s, "c\0d"s); }, 0,
       "[a]]\n#c\0d\n x=1\n\0y \n"s, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    DMConfig model;
    c.fill(&model);
    const std::string before = Render(&model);
    const CerrCapture cerr;
    std::ostringstream out;
    out << "kept\n";
    out.width(40);  // is for formatted text only
    EXPECT_EQ(DMConfigFile("", "").DumpConfig(&out, &model), c.status);
    EXPECT_EQ(out.str(), "kept\n" + c.text);
    EXPECT_EQ(cerr.text(), c.diagnostic);
    EXPECT_EQ(Render(&model), before);
  }
}

TEST(DumpConfig, MarksTheFirstLineOfAComment) {
  struct Case {
    const char *comment, *written;
  };
  const Case cases[] = {
      {"abc", "#abc\n"},     {"#abc", "#abc\n"},   {";abc", ";abc\n"}, {" #abc", "# #abc\n"},
      {"\n; b", "#\n; b\n"}, {"#a\nb", "#a\nb\n"}, {"\n", "#\n\n"},
  };
  for (const Case& c : cases) {
    DMConfig model;
    model.SetSectionComment("s", c.comment);
    std::ostringstream out;
    EXPECT_EQ(DMConfigFile("", "").DumpConfig(&out, &model), 0);
    EXPECT_EQ(out.str(), c.written + "[s]\n"s);
  }
}

TEST(DumpConfig, FlushesEveryLineAndStopsWhenTheStreamFails) {
  DMConfig model;
  FillWithAll(&model);
  LimitedBuffer all;
  std::ostream out(&all);
  EXPECT_EQ(DMConfigFile("", "").DumpConfig(&out, &model), 0);
  EXPECT_EQ(all.flushes(), 8);

  for (std::size_t room = 0; room < kAll.size(); ++room) {
    LimitedBuffer limited(static_cast<std::streamsize>(room));
    std::ostream failing(&limited);
    const CerrCapture cerr;
    EXPECT_EQ(DMConfigFile("", "some name").DumpConfig(&failing, &model), -4);
    EXPECT_EQ(limited.str(), kAll.substr(0, room));
    EXPECT_EQ(cerr.text(), "Failed to write file: some name\n");
  }
}

TEST(DumpConfig, RefusesWhatItCannotUse) {
  DMConfig model;
  FillWithAll(&model);
  const CerrCapture cerr;
  std::ostringstream out;
  EXPECT_EQ(DMConfigFile("", "").DumpConfig(nullptr, &model), -1);
  EXPECT_EQ(DMConfigFile("", "").DumpConfig(&out, nullptr), -1);
  EXPECT_EQ(DMConfigFile("x", "").DumpConfig(&model), -1);
  EXPECT_EQ(cerr.text(), "");
  for (const auto state : {std::ios::eofbit, std::ios::failbit, std::ios::badbit}) {
    std::ostringstream unusable;
    unusable.setstate(state);
    EXPECT_EQ(DMConfigFile("", "n").DumpConfig(&unusable, &model), -4);
    EXPECT_EQ(unusable.str(), "");
  }
  EXPECT_EQ(cerr.text(),
            "Failed to open file: n\nFailed to open file: n\nFailed to open file: n\n");
}

TEST(DumpConfig, ReplacesAFile) {
  const TempFolder folder;
  const std::string path = folder.Path("file");
  DMConfig model;
  FillWithAll(&model);
  EXPECT_EQ(DMConfigFile("", path).DumpConfig(&model), 0);
  EXPECT_EQ(DMConfigFile("", path).DumpConfig(nullptr), -1);
  EXPECT_EQ(folder.Read("file"), kAll);
  model.Reset();
  EXPECT_EQ(DMConfigFile("", path).DumpConfig(&model), 0);
  EXPECT_EQ(folder.Read("file"), "");

  const CerrCapture cerr;
  EXPECT_EQ(DMConfigFile("", folder.Path("no/file")).DumpConfig(&model), -4);
  EXPECT_EQ(cerr.text(), "Failed to open file: " + folder.Path("no/file") + "\n");
}

}  // namespace
}  // namespace quarry::storage::dmconfig
