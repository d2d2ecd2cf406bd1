#include "dmconfig/config_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <ostream>
#include <streambuf>

#include "tests/support/failing_calls.h"
#include "tests/support/support.h"

namespace quarry::storage::dmconfig {
namespace {

using std::string_literals::operator""s;

// Which texts are read to which models is compared in fuzz/reader.cc with a reference reader, and
// shown in docs/format.md.

class FullBuffer : public std::streambuf {};  // accepts nothing

// A tied stream is flushed before every line, and exceptions of the stream pass.
TEST(LoadConfig, UsesAStreamAsGetlineDoes) {
  FlushCounter output;
  std::ostream tied(&output);
  std::istringstream in("[s]\na=1\nb=2");
  in.tie(&tied);
  in.exceptions(std::ios::eofbit);
  DMConfig model;
  EXPECT_THROW((void)DMConfigFile("", "").LoadConfig(&in, &model), std::ios::failure);
  EXPECT_EQ(Render(&model), "s{a=1}");
  EXPECT_EQ(output.flushes, 3);
}

// A message may be written into the very buffer that is being read.
TEST(LoadConfig, SurvivesAStreamThatCerrWritesTo) {
  const std::string line = "no section " + std::string(99, 'x');
  std::stringstream both(line + "\n", std::ios::in | std::ios::out | std::ios::ate);
  DMConfig model;
  std::streambuf* const original = std::cerr.rdbuf(both.rdbuf());
  EXPECT_EQ(DMConfigFile("", "").LoadConfig(&both, &model), -2);
  std::cerr.rdbuf(original);
  EXPECT_EQ(both.str(), line + "\nFound an invalid line: " + line + "\n");
}

// "STATUS|TEXT|MESSAGES", the same for a text as for a stream. Every line is flushed.
std::string Dump(DMConfig* model) {
  const CerrCapture cerr;
  FlushCounter buffer;
  std::ostream out(&buffer);
  out.width(40);  // is for formatted text only
  const int status = DMConfigFile("", "").DumpConfig(&out, model);
  const std::string text = buffer.str();
  EXPECT_EQ(buffer.flushes, std::count(text.begin(), text.end(), '\n'));
  const std::string messages = cerr.text();
  std::string replaced = "what was there";
  EXPECT_EQ(DMConfigFile::DumpText(model, &replaced), status);
  EXPECT_EQ(replaced, text);
  EXPECT_EQ(cerr.text(), messages + messages);
  return std::to_string(status) + '|' + text + '|' + messages;
}

TEST(DumpConfig, LeavesOutOptionsWithoutANameAndStopsAtASectionWithoutOne) {
  DMConfig model;
  model.SetOptionValue("a", "x", "1");
  model.GetOptionMap("a")->option_map[""].value = "lost";
  model.SetOptionValue("b", "y", "2");
  EXPECT_EQ(Dump(&model), "-1|[a]\n[b]\ny=2\n|Failed to get value for option: \n");
  EXPECT_EQ(Render(&model), "a{=lost x=1} b{y=2}");
  model.Reset();
  for (const char* section : {"a", "", "b"}) model.GetOptionMap(section);
  EXPECT_EQ(Dump(&model), "-1|[a]\n|Failed to get option list for section: \n");
}

TEST(DumpConfig, WritesTextsAsTheyAreAndMarksComments) {
  DMConfig model;
  model.SetOptionValue("a]", " x", "1\n\0y "s, "c\0d"s);
  EXPECT_EQ(Dump(&model), "0|[a]]\n#c\0d\n x=1\n\0y \n|"s);
  const std::pair<const char*, std::string> comments[] = {
      {"abc", "#abc\n"},     {"#abc", "#abc\n"},   {";abc", ";abc\n"}, {" #abc", "# #abc\n"},
      {"\n; b", "#\n; b\n"}, {"#a\nb", "#a\nb\n"}, {"\n", "#\n\n"},
  };
  for (const auto& [comment, written] : comments) {
    model.Reset();
    model.SetSectionComment("s", comment);
    EXPECT_EQ(Dump(&model), "0|" + written + "[s]\n|");
  }
}

TEST(DMConfigFile, RefusesNullPointersFirst) {
  DMConfig model;
  model.GetOptionMap("kept");
  std::stringstream stream("[s]");
  const CerrCapture cerr;
  EXPECT_EQ(DMConfigFile("", "").LoadConfig(nullptr, &model), -1);
  EXPECT_EQ(DMConfigFile("", "").LoadConfig(&stream, nullptr), -1);
  EXPECT_EQ(DMConfigFile("", "x").LoadConfig(&model), -1);
  EXPECT_EQ(DMConfigFile("/missing", "").LoadConfig(nullptr), -1);
  EXPECT_EQ(DMConfigFile("", "").DumpConfig(nullptr, &model), -1);
  EXPECT_EQ(DMConfigFile("", "").DumpConfig(&stream, nullptr), -1);
  EXPECT_EQ(DMConfigFile("x", "").DumpConfig(&model), -1);
  std::string text = "kept";
  EXPECT_EQ(DMConfigFile::LoadText("[s]", nullptr), -1);
  EXPECT_EQ(DMConfigFile::DumpText(nullptr, &text), -1);
  EXPECT_EQ(DMConfigFile::DumpText(&model, nullptr), -1);
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(Render(&model), "kept{}");
  EXPECT_EQ(stream.tellg(), 0);
  EXPECT_EQ(stream.str(), "[s]");
  EXPECT_EQ(cerr.text(), "");
}

TEST(DMConfigFile, RefusesStreamsThatAreNotGood) {
  for (const auto state : {std::ios::eofbit, std::ios::failbit, std::ios::badbit}) {
    DMConfig model;
    model.GetOptionMap("s");
    std::stringstream stream("[t]");
    stream.setstate(state);
    const CerrCapture cerr;
    EXPECT_EQ(DMConfigFile("", "out").DumpConfig(&stream, &model), -4);
    EXPECT_EQ(Render(&model), "s{}");
    EXPECT_EQ(DMConfigFile("in", "").LoadConfig(&stream, &model), -4);
    EXPECT_EQ(Render(&model), "");
    EXPECT_EQ(stream.str(), "[t]");
    EXPECT_EQ(stream.rdstate(), state);
    EXPECT_EQ(cerr.text(), "Failed to open file: out\nFailed to open input file:in\n");
  }
}

TEST(DMConfigFile, ReplacesAndReadsFiles) {
  const TempFolder folder;
  DMConfigFile file(folder.Path("f"), folder.Path("f"));
  folder.Write("f", "[s]\na=1");
  DMConfig model;
  EXPECT_EQ(file.LoadConfig(&model), 0);
  EXPECT_EQ(Render(&model), "s{a=1}");
  model.DelOption("s", "a");
  EXPECT_EQ(file.DumpConfig(nullptr), -1);
  EXPECT_EQ(folder.Read("f"), "[s]\na=1");
  EXPECT_EQ(file.DumpConfig(&model), 0);
  EXPECT_EQ(folder.Read("f"), "[s]\n");

  const CerrCapture cerr;
  FullBuffer buffer;
  std::ostream full(&buffer);
  EXPECT_EQ(DMConfigFile("", "name").DumpConfig(&full, &model), -4);
  EXPECT_EQ(DMConfigFile("", "no/file").DumpConfig(&model), -4);
  EXPECT_EQ(DMConfigFile(folder.Path(""), "").LoadConfig(&model), -4);  // can be opened
  EXPECT_EQ(DMConfigFile("no/file", "").LoadConfig(&model), -4);
  EXPECT_EQ(cerr.text(),
            "Failed to write file: name\nFailed to open file: no/file\n"
            "Failed to open input file:no/file\n");
}

// Lines end before, at and after the end of what one call reads, and one needs many calls.
TEST(DMConfigFile, ReadsLinesOfAnyLength) {
  const TempFolder folder;
  for (const std::size_t size : {8183U, 8184U, 8185U, 8186U, 8187U, 8188U, 8189U, 100000U}) {
    const std::string value(size, 'v');
    for (const char* end : {"", "\n"}) {
      folder.Write("f", "[s]\na=" + value + "\nb=1" + end);
      DMConfig model;
      EXPECT_EQ(DMConfigFile(folder.Path("f"), "").LoadConfig(&model), 0);
      EXPECT_EQ(Render(&model), "s{a=" + value + " b=1}");
    }
  }
}

TEST(DMConfigFile, RepeatsInterruptedCallsAndReportsErrors) {
  const TempFolder folder;
  DMConfigFile file(folder.Path("f"), folder.Path("f"));
  folder.Write("f", "[s]\na=1\n");
  DMConfig model;
  failing_calls = {{"read", EINTR}};
  EXPECT_EQ(file.LoadConfig(&model), 0);
  EXPECT_EQ(Render(&model), "s{a=1}");
  failing_calls = {{"write", EINTR}};
  EXPECT_EQ(file.DumpConfig(&model), 0);
  EXPECT_EQ(folder.Read("f"), "[s]\na=1\n");
  failing_calls = {{"read", EIO}};
  EXPECT_EQ(file.LoadConfig(&model), -4);
  EXPECT_EQ(Render(&model), "");
  EXPECT_TRUE(failing_calls.empty());
}

// As on a full disk, a part of a line may still be written.
TEST(DMConfigFile, ReportsThatAFileCannotGrow) {
  const TempFolder folder;
  DMConfig model;
  model.SetOptionValue("s", "a", "1");
  rlimit whole{};
  getrlimit(RLIMIT_FSIZE, &whole);
  const rlimit seven_bytes = {7, whole.rlim_max};
  const auto handler = signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &seven_bytes);
  const CerrCapture cerr;
  const int status = DMConfigFile("", folder.Path("f")).DumpConfig(&model);
  setrlimit(RLIMIT_FSIZE, &whole);
  EXPECT_NE(signal(SIGXFSZ, handler), SIG_ERR);
  EXPECT_EQ(status, -4);
  EXPECT_EQ(cerr.text(), "Failed to write file: " + folder.Path("f") + '\n');
  EXPECT_EQ(folder.Read("f"), "[s]\na=1");
}

}  // namespace
}  // namespace quarry::storage::dmconfig
