// quarry-config: checks and queries configuration files. Here stand the command
// line and the way from any failure to an exit status.

#include <CLI/CLI.hpp>
#include <exception>
#include <functional>
#include <list>
#include <new>

#include "tools/commands.h"
#include "tools/display.h"
#include "tools/errors.h"
#include "tools/files.h"
#include "tools/nearest.h"
#include "tools/version.h"

namespace quarry::tool {

namespace {

const char kFooter[] =
    "FILE may be \"-\" for standard input; \"--\" ends the options.\n"
    "Exit status: 0 done; 1 the answer is no (errors found, option absent);\n"
    "2 wrong usage; 3 it could not be done (file unreadable or invalid).\n";

// The command line and what it asked for.
class CommandLine {
 public:
  CommandLine();

  // Throws CLI::ParseError or ToolError.
  int Run(int argc, char** argv);

 private:
  template <typename Request>
  CLI::App* AddCommand(const char* name, const char* description,
                       Request* request, int (*run)(const Request&));
  void AddCheck();
  void AddList();
  void AddGet();
  void DemandKnownCommand(int argc, char** argv) const;

  CLI::App app_{"Checks and queries configuration files.", "quarry-config"};
  std::function<int()> command_;
  CheckRequest check_;
  ListRequest list_;
  GetRequest get_;
};

CommandLine::CommandLine() {
  app_.require_subcommand(1);
  app_.footer(kFooter);
  app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app_.get_formatter()->label("Subcommands", "Commands");
  app_.get_formatter()->label("REQUIRED", "");
  app_.get_formatter()->label("TEXT", "");
  app_.set_help_flag("-h,--help", "Show this help and end");
  app_.add_flag_callback(
      "--version", [] { throw CLI::CallForVersion(VersionText(), 0); },
      "Show the versions of the program and its libraries and end");
  AddCheck();
  AddList();
  AddGet();
}

template <typename Request>
CLI::App* CommandLine::AddCommand(const char* name, const char* description,
                                  Request* request,
                                  int (*run)(const Request&)) {
  CLI::App* const command = app_.add_subcommand(name, description);
  command->footer(kFooter);
  command->callback(
      [this, request, run] { command_ = [=] { return run(*request); }; });
  return command;
}

void CommandLine::AddCheck() {
  CLI::App* const command = AddCommand(
      "check", "Show every error and warning in files", &check_, RunCheck);
  command->add_option("FILE", check_.files, "Files to check")->required();
  command->add_flag("--strict", check_.strict, "Let warnings count as errors");
  command->add_flag("--json", check_.json, "Print the findings as JSON");
}

void CommandLine::AddList() {
  CLI::App* const command = AddCommand(
      "list", "Show the sections of a file, or one section's options", &list_,
      RunList);
  command->add_option("FILE", list_.file, "File to read")->required();
  command->add_option("SECTION", list_.section, "Show this section only");
  command->add_flag("--origin", list_.origin,
                    "Show every option with its value and line");
  command->add_flag("--json", list_.json,
                    "Print sections, options, values and comments as JSON");
}

void CommandLine::AddGet() {
  CLI::App* const command =
      AddCommand("get", "Show the value of one option", &get_, RunGet);
  command->add_option("FILE", get_.file, "File to read")->required();
  command->add_option("SECTION", get_.section, "Its section")->required();
  command->add_option("OPTION", get_.option, "Its option")->required();
  command->add_option("--default", get_.default_text,
                      "Show this text when the option is absent");
}

int CommandLine::Run(int argc, char** argv) {
  try {
    DemandKnownCommand(argc, argv);
    app_.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    const auto commands = app_.get_subcommands();
    WriteStandardOutput(commands.empty()
                            ? app_.help()
                            : commands.front()->help("quarry-config"));
    return kExitDone;
  } catch (const CLI::CallForVersion& version) {
    WriteStandardOutput(version.what());
    return kExitDone;
  } catch (const CLI::ParseError& error) {
    const auto commands = app_.get_subcommands();
    const std::string command =
        commands.empty() ? "" : commands.front()->get_name() + ' ';
    throw ToolError(
        kExitUsage,
        ErrorReport(Shown(error.what()),
                    "see: quarry-config " + command +
                        "--help; put \"--\" before a name or value that begins "
                        "with \"-\""));
  }
  return command_();
}

// Before CLI11 parses: its own message would not say what is wrong.
void CommandLine::DemandKnownCommand(int argc, char** argv) const {
  const std::string help_hint = "see: quarry-config --help";
  const std::string name = argc > 1 ? argv[1] : "";
  if (name.empty()) {
    throw ToolError(kExitUsage, ErrorReport("no command is given", help_hint));
  }
  if (app_.get_option_no_throw(name) != nullptr) return;

  std::list<std::string> known;
  for (const CLI::App* command : app_.get_subcommands({})) {
    known.push_back(command->get_name());
  }
  if (std::find(known.begin(), known.end(), name) != known.end()) return;
  const auto nearest = NearestNames(name, known);
  throw ToolError(
      kExitUsage,
      ErrorReport("no command " + Quoted(name),
                  nearest.empty() ? help_hint : "nearest: " + nearest.front()));
}

int Main(int argc, char** argv) {
  try {
    ReserveStandardStreams();
    return CommandLine().Run(argc, argv);
  } catch (const ToolError& error) {
    WriteStandardError(error.report());
    return error.exit_status();
  } catch (const std::bad_alloc&) {
    WriteStandardError(ErrorReport("out of memory"));
  } catch (const std::exception& error) {
    WriteStandardError(ErrorReport(error.what()));
  }
  return kExitFailed;
}

}  // namespace

}  // namespace quarry::tool

int main(int argc, char** argv) { return quarry::tool::Main(argc, argv); }
