// quarry-config as a process: what goes in, what comes out.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace {

using std::string_literals::operator""s;

class ToolTest : public testing::Test {
 protected:
  ToolTest() {
    Write("a.conf",
          "; first\n[Server]\nthreads = 4\nThreads = 8\n[client]\nmode=on\n"
          "[empty]\n");
    Write("bad.conf", "[s]\nthreads 4\nx=1 # y\n[t\n");
    Write("warn.conf", "[s]\nx=1 # y\n");
    // A device that is always full, or a link to it. A bare /dev has none.
    const std::string full = folder_ + "/full";
    struct stat status {};
    const bool made =
        stat("/dev/full", &status) == 0 && S_ISCHR(status.st_mode)
            ? symlink("/dev/full", full.c_str()) == 0
            : mknod(full.c_str(), S_IFCHR | 0600, makedev(1, 7)) == 0;
    EXPECT_TRUE(made);
    Write("raw.conf", "[s]\n\xFF=\0\xFE\n"s);
  }

  struct Outcome {
    int exit_status;
    std::string out, err;
  };

  // Runs `arguments` behind the program's name in a shell, in folder_.
  Outcome Run(const std::string& arguments) {
    const std::string command = "cd '" + folder_ +
                                "' && { '" QUARRY_CONFIG_PROGRAM "' " +
                                arguments + "; } >out 2>err";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Read("out"),
            Read("err")};
  }

 private:
  void Write(const std::string& name, const std::string& text) {
    std::ofstream(folder_ + '/' + name) << text;
  }
  std::string Read(const std::string& name) {
    std::ostringstream text;
    text << std::ifstream(folder_ + '/' + name).rdbuf();
    return text.str();
  }

  const std::string folder_ = [] {
    std::string name = testing::TempDir() + "/quarry_toolXXXXXX";
    return std::string(mkdtemp(name.data()));
  }();
};

const char kBadErrors[] =
    "quarry-config: bad.conf:2:1: option line without \"=\"\n"
    "  2 | threads 4\n    | ^~~~~~~~~\n"
    "  hint: write \"threads = 4\", or put \"#\" first to make it a comment\n"
    "quarry-config: bad.conf:4:1: section header without \"]\"\n"
    "  4 | [t\n    | ^~\n"
    "  hint: add \"]\" after the section name\n";
const char kWarning[] =
    "quarry-config: warn.conf:2:5: warning: this is part of the value\n"
    "  2 | x=1 # y\n    |     ^~~\n"
    "  hint: comments stand on lines of their own\n";

TEST_F(ToolTest, AnswersAndRefuses) {
  struct Case {
    std::string arguments;
    int exit_status;
    std::string out, err;
  };
  const std::string no_file =
      "quarry-config: cannot open nope: No such file or directory\n";
  const Case cases[] = {
      {"check warn.conf", 0, "", kWarning},
      {"check --strict warn.conf a.conf", 1, "",
       kWarning + "quarry-config: a.conf:4:1: warning: option again: overrides "
                  "line 3\n"
                  "  4 | Threads = 8\n    | ^~~~~~~\n"
                  "  hint: keep one of the two lines\n"s},
      {"check nope warn.conf", 3, "", no_file + kWarning},
      {"check --json warn.conf raw.conf", 0,
       "{\"schema\":1,\"files\":[{\"file\":\"warn.conf\",\"findings\":[{"
       "\"severity\":\"warning\",\"line\":2,\"column\":5,\"length\":3,"
       "\"message\":\"this is part of the value\","
       "\"hint\":\"comments stand on lines of their own\"}]},"
       "{\"file\":\"raw.conf\",\"findings\":[]}]}\n",
       ""},
      {"check --json bad.conf >/dev/null", 1, "", ""},
      {"check a.conf >&-", 0, "",
       "quarry-config: a.conf:4:1: warning: option again: overrides line 3\n"
       "  4 | Threads = 8\n    | ^~~~~~~\n"
       "  hint: keep one of the two lines\n"},
      {"list a.conf", 0, "Server\nclient\nempty\n", ""},
      {"list a.conf SERVER", 0, "threads\n", ""},
      {"list a.conf serve", 1, "",
       "quarry-config: a.conf: no section \"serve\"\n"
       "  hint: nearest: \"Server\"\n"},
      {"list a.conf --origin", 0,
       "a.conf:4: [Server] threads = 8\na.conf:6: [client] mode = on\n", ""},
      {"list --origin raw.conf", 0, "raw.conf:2: [s] \\xff = \\x00\\xfe\n", ""},
      {"list --json a.conf server", 0,
       "{\"schema\":1,\"file\":\"a.conf\",\"sections\":[{\"name\":\"Server\","
       "\"comment\":\"\\n; first\",\"options\":[{\"name\":\"threads\","
       "\"value\":\"8\",\"comment\":\"\"}]}]}\n",
       ""},
      {"list --json --origin - <raw.conf", 0,
       "{\"schema\":1,\"file\":\"-\",\"sections\":[{\"name\":\"s\","
       "\"comment\":\"\",\"options\":[{\"name\":\"\xEF\xBF\xBD\","
       "\"name_base64\":\"/w==\",\"value\":\"\\u0000\xEF\xBF\xBD\","
       "\"value_base64\":\"AP4=\",\"comment\":\"\",\"line\":2}]}]}\n",
       ""},
      {"list bad.conf", 3, "", kBadErrors},
      {"list .", 3, "", "quarry-config: cannot read .: Is a directory\n"},
      {"list a.conf >full", 3, "",
       "quarry-config: cannot write standard output: No space left on "
       "device\n"},
      {"list a.conf >&-", 3, "",
       "quarry-config: cannot write standard output: Bad file descriptor\n"},
      {"--help >full", 3, "",
       "quarry-config: cannot write standard output: No space left on "
       "device\n"},
      {"get a.conf server THREADS", 0, "8\n", ""},
      {"get raw.conf s \"$(printf '\\377')\"", 0, "\0\xFE\n"s, ""},
      {"get - client mode <a.conf", 0, "on\n", ""},
      {"get - client mode <&-", 3, "",
       "quarry-config: cannot read <stdin>: Bad file descriptor\n"},
      {"get nope s o --default x", 3, "", no_file},
      {"get bad.conf s x --default y", 3, "", kBadErrors},
      {"get a.conf server threads --default x", 0, "8\n", ""},
      {"get a.conf server none --default ''", 0, "\n", ""},
      {"get a.conf none none --default -1", 0, "-1\n", ""},
      {"get a.conf server thraeds", 1, "",
       "quarry-config: a.conf: no option \"thraeds\" in section \"server\"\n"
       "  hint: nearest: \"threads\"\n"},
      {"get a.conf server mode", 1, "",
       "quarry-config: a.conf: no option \"mode\" in section \"server\"\n"
       "  hint: section \"client\" has an option of this name\n"},
      {"get a.conf client x", 1, "",
       "quarry-config: a.conf: no option \"x\" in section \"client\"\n"
       "  hint: see all names with: quarry-config list a.conf client\n"},
      {"get -- a.conf -x -y", 1, "",
       "quarry-config: a.conf: no section \"-x\"\n"
       "  hint: see all names with: quarry-config list a.conf\n"},
      {"get a.conf -x y", 2, "",
       "quarry-config: OPTION is required\n  hint: see: quarry-config get "
       "--help; put \"--\" before a name or value that begins with \"-\"\n"},
      {"chekc a.conf", 2, "",
       "quarry-config: no command \"chekc\"\n  hint: nearest: check\n"},
      {"", 2, "",
       "quarry-config: no command is given\n"
       "  hint: see: quarry-config --help\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE("quarry-config " + c.arguments);
    const Outcome outcome = Run(c.arguments);
    EXPECT_EQ(outcome.exit_status, c.exit_status);
    EXPECT_EQ(outcome.out, c.out);
    EXPECT_EQ(outcome.err, c.err);
  }
}

TEST_F(ToolTest, ColoursAndSumsUpOnATerminalOnly) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  if (terminal == -1) GTEST_SKIP() << "no pseudo-terminals on this machine";
  close(terminal);
  const auto on_terminal = [this](const std::string& variables) {
    return Run("--version >/dev/null; env -u NO_COLOR " + variables +
               " script -qec \"" QUARRY_CONFIG_PROGRAM
               " check warn.conf\" /dev/null </dev/null");
  };
  const std::string plain = on_terminal("TERM=dumb").out;
  EXPECT_NE(plain.find("warn.conf:2:5: warning: this is part"),
            std::string::npos);
  EXPECT_NE(plain.find("1 file, no errors, 1 warning"), std::string::npos);
  EXPECT_EQ(plain.find('\x1b'), std::string::npos);
  EXPECT_EQ(on_terminal("TERM=xterm NO_COLOR=1").out, plain);
  EXPECT_NE(on_terminal("TERM=xterm").out.find("\x1b[1;35mwarning: \x1b[0m"),
            std::string::npos);
}

TEST_F(ToolTest, NamesItsVersionAndTheLibraryInUse) {
  const std::string out = Run("--version").out;
  EXPECT_EQ(
      out.find("quarry-config " QUARRY_VERSION
               "\nlibquarry_config: " QUARRY_CONFIG_LIBRARY "\nlibsodium 1."),
      0U)
      << out;
}

}  // namespace
