#include "dmconfig/config_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <memory>
#include <thread>

#include "tests/chunk_buffer.h"
#include "tests/support.h"

namespace quarry::storage::dmconfig {
namespace {

using std::string_literals::operator""s;

constexpr auto kGood = std::ios::goodbit;
constexpr auto kEof = std::ios::eofbit;
constexpr auto kEnd = std::ios::eofbit | std::ios::failbit;

struct LoadCase {
  const char* name;
  std::string text;
  int status;
  std::string diagnostic;  // all that reached std::cerr
  std::string model;       // Render() of what the load left behind
  std::ios::iostate state;
  std::string rest;  // what the stream still holds
};

// Loads the case through streams that buffer in different ways: all at once, in
// small pieces, and tied, which must make no difference.
void ExpectLoads(const LoadCase& c) {
  SCOPED_TRACE(c.name);
  for (const std::size_t chunk : {1000U, 1U, 2U, 5U, 0U}) {
    SCOPED_TRACE(chunk);
    ChunkBuffer buffer(c.text, chunk == 0 ? 1000 : chunk);
    std::istream in(&buffer);
    std::ostringstream tied;
    if (chunk == 0) in.tie(&tied);
    DMConfig model;
    model.SetOptionValue("before", "the", "load");
    CerrCapture cerr;
    EXPECT_EQ(DMConfigFile("", "").LoadConfig(&in, &model), c.status);
    EXPECT_EQ(cerr.text(), c.diagnostic);
    EXPECT_EQ(Render(&model), c.model);
    EXPECT_EQ(in.rdstate(), c.state);
    in.clear();
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), c.rest);
  }
}

TEST(LoadConfig, ReadsTheFormat) {
  const LoadCase cases[] = {
      {"all kinds of line",
       "; storage settings\n#tuning follows\n\n[Server]\n  threads = 4   \n"
       "path=/var/lib/data=old # not a comment\nempty =\n\t; about the client\n"
       "[client]  \nMode = on\n[SERVER]\n; raised\nTHREADS = 8\n;end\n",
       0, "",
       "Server{empty= path=/var/lib/data=old # not a comment "
       "threads=8(\n; raised)} client(\n; about the client){Mode=on}",
       kEnd, ""},
      {"empty", "", 0, "", "", kEnd, ""},
      {"one line feed", "\n", 0, "", "", kEnd, ""},
      {"comments only", "#a\n\n;b", 0, "", "", kEof, ""},
      {"no last line feed", "[s]\na=1", 0, "", "s{a=1}", kEof, ""},
      {"comment before a section", "#a\n\n \t\r\n;b \n[s]\na=1\n", 0, "", "s(\n#a\n;b ){a=1}", kEnd, ""},
      {"comment once", "[s]\n#c\na=1\nb=2\n", 0, "", "s{a=1(\n#c) b=2}", kEnd, ""},
      {"option again keeps its comment", "[s]\n#c\na=1\nA=2\n", 0, "", "s{a=2(\n#c)}", kEnd, ""},
      {"option again with a comment", "[s]\n#c\na=1\n;d\nA=2\n", 0, "", "s{a=2(\n;d)}", kEnd, ""},
      {"section again loses its comment", "#c\n[Main]\na=1\n[x]\n[MAIN]\nb=2\n", 0, "", "Main{a=1 b=2} x{}", kEnd, ""},
      {"options in any order", "[s]\nb=1\na=2\nc=3\nB=4\n", 0, "", "s{a=2 b=4 c=3}", kEnd, ""},
      {"carriage returns", "#c\r\n[s]\r\n\r\nk = v\r\nl=\r\n", 0, "", "s(\n#c\r){k=v\r l=\r}", kEnd, ""},
      {"leading blanks", " \t\r[s]\n\r a = 1\n  ;c\n\tb=2\n", 0, "", "s{a=1 b=2(\n;c)}", kEnd, ""},
      {"other leading bytes are names", "[s]\n\fa=1\n\v#b=2\n\xEF\xBB\xBF=3\n", 0, "", "s{\v#b=2 \fa=1 \xEF\xBB\xBF=3}",
       kEnd, ""},
      {"trimming", "[s]\na b \t=\t c  d \nblank=  \nnone=\n", 0, "", "s{a b=c  d blank=   none=}", kEnd, ""},
      {"names of sections", "[ main ]\n[main] \t\r\n[a[b]\n[#]\n", 0, "", " main {} main{} a[b{} #{}", kEnd, ""},
      {"marks in names and values", "[s]\na;b#c[d]=\"x\" \\ ; y = [z]\n", 0, "", "s{a;b#c[d]=\"x\" \\ ; y = [z]}", kEnd,
       ""},
      {"NUL bytes", "[s\0t]\na\0b=c\0d\n[S]\nA=2\n"s, 0, "", "s\0t{a\0b=2}"s, kEnd, ""},
  };
  for (const LoadCase& c : cases) ExpectLoads(c);
}

TEST(LoadConfig, StopsAtTheFirstInvalidLine) {
  const LoadCase cases[] = {
      {"no ]", "[a]\nx=1\n[b\n[c]\n", -2, "", "a{x=1}", kGood, "[c]\n"},
      {"empty name", "[a]\n[]\nx=1", -2, "", "a{}", kGood, "x=1"},
      {"empty name and more", "[]x]\n", -2, "", "", kGood, ""},
      {"text after ]", "[a] ;n\n", -2, "Found invalid line: [a] ;n\n", "", kGood, ""},
      {"second ]", " [a]]", -2, "Found invalid line: [a]]\n", "", kEof, ""},
      {"form feed after ]", "[a]\f\n", -2, "Found invalid line: [a]\f\n", "", kGood, ""},
      {"before a section", "#c\n x=1 \n\n", -2, "Found an invalid line: x=1 \n", "", kGood, "\n"},
      {"word before a section", "abc", -2, "Found an invalid line: abc\n", "", kEof, ""},
      {"= before a section", "=", -2, "Found an invalid line: =\n", "", kEof, ""},
      {"byte-order mark", "\xEF\xBB\xBF[a]\n", -2, "Found an invalid line: \xEF\xBB\xBF[a]\n", "", kGood, ""},
      {"no =", "[a]\n#c\nabc\n#d\n", -2, "", "a{}", kGood, "#d\n"},
      {"no name", "[a]\n   = 1\n\n", -2, "Found an invalid key: = 1\n", "a{}", kGood, "\n"},
      {"NUL in the message", "a\0b\n"s, -2, "Found an invalid line: a\0b\n"s, "", kGood, ""},
  };
  for (const LoadCase& c : cases) ExpectLoads(c);
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

TEST(LoadConfig, KeepsWhatWasReadBeforeAStreamFailed) {
  ChunkBuffer buffer("[s]\na=1\nb=2", 3, true);
  std::istream in(&buffer);
  DMConfig model;
  CerrCapture cerr;
  EXPECT_EQ(DMConfigFile("", "").LoadConfig(&in, &model), -4);
  EXPECT_EQ(Render(&model), "s{a=1}");
  EXPECT_EQ(cerr.text(), "");
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

TEST(LoadConfig, ReadsFilesOfEveryKind) {
  const TempFolder folder;
  DMConfig model;
  model.GetOptionMap("gone");
  CerrCapture cerr;

  const std::string missing = folder / "missing";
  EXPECT_EQ(DMConfigFile(missing, "").LoadConfig(&model), -4);
  EXPECT_EQ(cerr.text(), "Failed to open input file:" + missing + "\n");
  EXPECT_EQ(Render(&model), "");

  EXPECT_EQ(DMConfigFile(folder / "", "").LoadConfig(&model), -4);  // opens only
  EXPECT_EQ(cerr.text(), "Failed to open input file:" + missing + "\n");

  // Longer than the buffer of a file stream, so lines straddle its ends.
  const std::string long_value(20000, 'v');
  std::string text = "[s]\n";
  for (int i = 0; i < 3000; ++i) text += "\n  #comment\nsame = short\n";
  text += "long = " + long_value + "\n[last]";
  const std::string expected = "s{long=" + long_value + " same=short(\n#comment)} last{}";
  const std::string path = folder / "file";
  std::ofstream(path) << text;
  DMConfigFile file(path, "");
  EXPECT_EQ(file.LoadConfig(&model), 0);
  EXPECT_EQ(Render(&model), expected);
  EXPECT_EQ(file.LoadConfig(&model), 0);  // keeps nothing from the first load
  EXPECT_EQ(Render(&model), expected);

  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] { std::ofstream(pipe) << text; });
  EXPECT_EQ(DMConfigFile(pipe, "").LoadConfig(&model), 0);
  writer.join();
  EXPECT_EQ(Render(&model), expected);
}

// A tied stream is flushed before every line, as std::getline does.
TEST(LoadConfig, FlushesATiedStream) {
  class CountingBuffer : public std::stringbuf {
   public:
    int flushes = 0;

   protected:
    int sync() override { return ++flushes, 0; }
  };
  CountingBuffer output;
  std::ostream tied(&output);
  std::istringstream in("[s]\na=1\nb=2");
  in.tie(&tied);
  DMConfig model;
  EXPECT_EQ(DMConfigFile("", "").LoadConfig(&in, &model), 0);
  EXPECT_EQ(output.flushes, 3);
}

TEST(LoadConfig, ServesThreadsThatUseModelsOfTheirOwn) {
  const TempFolder folder;
  const std::string path = folder / "shared";
  std::ofstream(path) << "#c\n[s]\na=1\nb=2\n";
  DMConfigFile shared(path, "");
  const auto load = [&shared] {
    for (int i = 0; i < 200; ++i) {
      DMConfig model;
      EXPECT_EQ(shared.LoadConfig(&model), 0);
      EXPECT_EQ(Render(&model), "s(\n#c){a=1 b=2}");
    }
  };
  std::thread other(load);
  load();
  other.join();
}

}  // namespace
}  // namespace quarry::storage::dmconfig
