#include <gtest/gtest.h>

#include "dmconfig/config_file.h"
#include "tests/support/support.h"

namespace quarry::storage::dmconfig {
namespace {

// fuzz/reader.cc compares every text with a second reader; these are what a
// user reads first in the contract.
TEST(LoadConfig, ReadsTheFormatUpToTheFirstInvalidLine) {
  struct Case {
    std::string text;
    int status;
    std::string diagnostic;  // all that reached std::cerr
    std::string model;       // Render() of what the load left behind
  };
  const Case cases[] = {
      {"; storage settings\n#tuning follows\n\n[Server]\n  threads = 4   \n"
       "path=/var/lib/data=old # not a comment\nempty =\n\t; about the client\n"
       "[client]  \nMode = on\n[SERVER]\n; raised\nTHREADS = 8\n;end\n",
       0, "",
       "Server{empty= path=/var/lib/data=old # not a comment "
       "threads=8(\n; raised)} client(\n; about the client){Mode=on}"},
      {"[a]\nx=1\n[b\n[c]\n", -2, "", "a{x=1}"},
      {"[a] ;n\n", -2, "Found invalid line: [a] ;n\n", ""},
      {"#c\n x=1 \n\n", -2, "Found an invalid line: x=1 \n", ""},
      {"[a]\n   = 1\n\n", -2, "Found an invalid key: = 1\n", "a{}"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::istringstream in(c.text);
    DMConfig model;
    model.SetOptionValue("before", "the", "load");
    const CerrCapture cerr;
    EXPECT_EQ(DMConfigFile("", "").LoadConfig(&in, &model), c.status);
    EXPECT_EQ(cerr.text(), c.diagnostic);
    EXPECT_EQ(Render(&model), c.model);
  }
}

TEST(LoadConfig, RefusesNullPointersFirst) {
  DMConfig model;
  model.GetOptionMap("kept");
  std::istringstream in("[s]");
  CerrCapture cerr;
  EXPECT_EQ(DMConfigFile("", "").LoadConfig(nullptr, &model), -1);
  EXPECT_EQ(DMConfigFile("", "").LoadConfig(&in, nullptr), -1);
  EXPECT_EQ(DMConfigFile("", "x").LoadConfig(&model), -1);
  EXPECT_EQ(DMConfigFile("/missing", "").LoadConfig(nullptr), -1);
  EXPECT_EQ(Render(&model), "kept{}");
  EXPECT_EQ(in.tellg(), 0);
  EXPECT_EQ(cerr.text(), "");
}

TEST(LoadConfig, RefusesStreamsThatAreNotGood) {
  for (const auto state : {std::ios::eofbit, std::ios::failbit, std::ios::badbit}) {
    DMConfig model;
    model.GetOptionMap("gone");
    std::istringstream in("[s]");
    in.setstate(state);
    CerrCapture cerr;
    EXPECT_EQ(DMConfigFile("some name", "").LoadConfig(&in, &model), -4);
    EXPECT_EQ(cerr.text(), "Failed to open input file:some name\n");
    EXPECT_EQ(Render(&model), "");
    EXPECT_EQ(in.rdstate(), state);
  }
}

TEST(LoadConfig, PassesTheStreamsExceptionsOn) {
  std::istringstream in("[s]\na=1\nb=2");
  in.exceptions(std::ios::eofbit);
  DMConfig model;
  EXPECT_THROW(DMConfigFile("", "").LoadConfig(&in, &model), std::ios::failure);
  EXPECT_EQ(Render(&model), "s{a=1}");
}

// What a diagnostic writes may go into the very buffer that is being read.
TEST(LoadConfig, SurvivesAStreamThatCerrWritesTo) {
  const std::string line = "no section " + std::string(99, 'x');
  std::stringstream both(line + "\n", std::ios::in | std::ios::out | std::ios::ate);
  DMConfig model;
  std::streambuf* const original = std::cerr.rdbuf(both.rdbuf());
  EXPECT_EQ(DMConfigFile("", "").LoadConfig(&both, &model), -2);
  std::cerr.rdbuf(original);
  EXPECT_EQ(both.str(), line + "\nFound an invalid line: " + line + "\n");
}

TEST(LoadConfig, ReadsFiles) {
  const TempFolder folder;
  folder.Write("file", "[s]\na=1");
  DMConfig model;
  CerrCapture cerr;
  EXPECT_EQ(DMConfigFile(folder.Path("file"), "").LoadConfig(&model), 0);
  EXPECT_EQ(Render(&model), "s{a=1}");
  EXPECT_EQ(DMConfigFile(folder.Path(""), "").LoadConfig(&model), -4);  // opens only
  EXPECT_EQ(cerr.text(), "");
  EXPECT_EQ(DMConfigFile(folder.Path("missing"), "").LoadConfig(&model), -4);
  EXPECT_EQ(cerr.text(), "Failed to open input file:" + folder.Path("missing") + "\n");
}

// A tied stream is flushed before every line, as std::getline does.
TEST(LoadConfig, FlushesATiedStream) {
  LimitedBuffer output;
  std::ostream tied(&output);
  std::istringstream in("[s]\na=1\nb=2");
  in.tie(&tied);
  DMConfig model;
  EXPECT_EQ(DMConfigFile("", "").LoadConfig(&in, &model), 0);
  EXPECT_EQ(output.flushes(), 3);
}

}  // namespace
}  // namespace quarry::storage::dmconfig
