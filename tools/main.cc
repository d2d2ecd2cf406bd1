// quarry-config: checks, queries and edits configuration files. Here stand the
// command line and the way from any failure to an exit status.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <functional>
#include <list>
#include <new>
#include <string>
#include <vector>

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
    "2 wrong usage; 3 it could not be done (file unreadable or invalid).";

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
  void AddSetAndUnset();
  void AddEdit();
  void AddDumpAndDiff();
  void AddClient();
  void AddAgent();
  void AddKeyCommands();
  void DemandKnownCommand(const std::vector<std::string>& words) const;
  std::string UsageHint(int argc, char** argv) const;

  CLI::App app_{"Checks, queries and edits configuration files.",
                "quarry-config"};
  std::function<int()> command_;
  CheckRequest check_;
  ListRequest list_;
  GetRequest get_;
  SetRequest set_;
  UnsetRequest unset_;
  EditRequest edit_;
  DumpRequest dump_;
  DiffRequest diff_;
  ClientRequest client_;
  AgentRequest agent_;
  KeyRequest keygen_;
  KeyRequest seal_;
};

CommandLine::CommandLine() {
  app_.require_subcommand(1);
  app_.footer(kFooter);
  app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app_.get_formatter()->label("REQUIRED", "");
  app_.get_formatter()->label("TEXT", "");
  app_.set_help_flag("-h,--help", "Show this help and end");
  app_.add_flag_callback(
      "--version", [] { throw CLI::CallForVersion(VersionText(), 0); },
      "Show the versions of the program and its libraries and end");
  AddCheck();
  AddList();
  AddGet();
  AddSetAndUnset();
  AddEdit();
  AddDumpAndDiff();
  AddClient();
  AddAgent();
  AddKeyCommands();
}

template <typename Request>
CLI::App* CommandLine::AddCommand(const char* name, const char* description,
                                  Request* request,
                                  int (*run)(const Request&)) {
  CLI::App* const command = app_.add_subcommand(name, description);
  command->footer(kFooter);
  command->group("Commands");
  command->callback(
      [this, request, run] { command_ = [=] { return run(*request); }; });
  return command;
}

void AddAs(std::string* as, CLI::App* command) {
  command
      ->add_option("--as", *as,
                   "Check also what this program takes: agent or client")
      ->type_name("PROGRAM")
      ->check(CLI::IsMember({"agent", "client"}));
}

void CommandLine::AddCheck() {
  CLI::App* const command = AddCommand(
      "check", "Show every error and warning in files", &check_, RunCheck);
  command->add_option("FILE", check_.files, "Files to check")->required();
  command->add_flag("--strict", check_.strict, "Let warnings count as errors");
  command->add_flag("--json", check_.json, "Print the findings as JSON");
  AddAs(&check_.as, command);
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
  command
      ->add_option("--default", get_.default_text,
                   "Show this text when the option is absent")
      ->type_name("VALUE");
}

void CommandLine::AddSetAndUnset() {
  const char* const kDryRun = "Show the edit as a unified diff, do not make it";
  CLI::App* const set = AddCommand(
      "set", "Set options, leaving every other line as it is", &set_, RunSet);
  set->add_option("FILE", set_.file, "File to edit")->required();
  set->add_option("SECTION", set_.section, "The section");
  set->add_option("OPTION", set_.option, "Its option");
  set->add_option("VALUE", set_.value, "The option's new value");
  set->add_option("--from", set_.changes,
                  "Set all options of this file, or none")
      ->type_name("CHANGES");
  set->add_flag("--create", set_.create, "Make a new file when there is none");
  set->add_flag("--dry-run", set_.dry_run, kDryRun);
  CLI::App* const unset =
      AddCommand("unset", "Remove an option, leaving every other line as it is",
                 &unset_, RunUnset);
  unset->add_option("FILE", unset_.file, "File to edit")->required();
  unset->add_option("SECTION", unset_.section, "Its section")->required();
  unset->add_option("OPTION", unset_.option, "The option")->required();
  unset->add_flag("--with-comment", unset_.with_comment,
                  "Remove also the comment lines directly above it");
  unset->add_flag("--dry-run", unset_.dry_run, kDryRun);
}

void CommandLine::AddEdit() {
  CLI::App* const command = AddCommand(
      "edit",
      "Edit a file with $VISUAL or $EDITOR and check it before it is "
      "saved",
      &edit_, RunEdit);
  command->add_option("FILE", edit_.file, "File to edit")->required();
  AddAs(&edit_.as, command);
}

void CommandLine::AddDumpAndDiff() {
  CLI::App* const dump = AddCommand(
      "dump", "Show a file as a program would save it", &dump_, RunDump);
  dump->add_option("FILE", dump_.file, "File to read")->required();
  dump->add_flag("--json", dump_.json, "Print it as JSON");
  dump->add_option("-o", dump_.output, "Write it to this file")
      ->type_name("OUT");
  CLI::App* const diff =
      AddCommand("diff", "Show what differs between two files for programs",
                 &diff_, RunDiff);
  diff->add_option("A", diff_.left, "One file")->required();
  diff->add_option("B", diff_.right, "The other file")->required();
  diff->add_flag("--json", diff_.json, "Print the differences as JSON");
}

void CommandLine::AddClient() {
  CLI::App* const command = AddCommand(
      "client", "Show what a client takes from a file", &client_, RunClient);
  command->add_option("FILE", client_.file, "The client's file")->required();
  command->add_flag("--json", client_.json, "Print it as JSON");
}

void CommandLine::AddAgent() {
  CLI::App* const command =
      AddCommand("agent", "Start an agent for a trial and show its settings",
                 &agent_, RunAgent);
  command->add_option("FILE", agent_.file, "The agent's file")->required();
  command->add_flag("--json", agent_.json, "Print the settings as JSON");
}

void CommandLine::AddKeyCommands() {
  AddCommand("keygen", "Make a key file to seal passwords with", &keygen_,
             RunKeygen)
      ->add_option("DIR", keygen_.folder, "Folder for the key file auth.key")
      ->required();
  AddCommand("seal", "Seal the password on standard input with a key", &seal_,
             RunSeal)
      ->add_option("DIR", seal_.folder, "Folder with the key file auth.key")
      ->required();
}

// CLI11 takes a word in brackets for a list of words where it expects several.
// The mark in front of such a word, and of one that has it anyway, prevents it.
constexpr char kLiteralMark = '\x01';

std::string Marked(const std::string& word) {
  const bool marks =
      !word.empty() && (word[0] == '[' || word[0] == kLiteralMark);
  return marks ? kLiteralMark + word : word;
}

std::string Unmarked(const std::string& word) {
  return !word.empty() && word[0] == kLiteralMark ? word.substr(1) : word;
}

// The words of the command line as CLI11 understands what was meant. It finds
// no text in "--default=", but in "--default" and an empty word.
std::vector<std::string> WordsFor(int argc, char** argv) {
  std::vector<std::string> words;
  bool options = true;
  for (int i = 1; i < argc; ++i) {
    std::string word = argv[i];
    options = options && word != "--";
    const bool empty_value = options && word.size() > 3 &&
                             word.substr(0, 2) == "--" && word.back() == '=';
    if (empty_value) word.pop_back();
    const bool several = !words.empty() && words[0] == "check";
    words.push_back(several ? Marked(word) : word);
    if (empty_value) words.emplace_back();
  }
  return words;
}

int CommandLine::Run(int argc, char** argv) {
  std::vector<std::string> words = WordsFor(argc, argv);
  try {
    DemandKnownCommand(words);
    std::reverse(words.begin(), words.end());  // as CLI11 wants it
    app_.parse(words);
    std::transform(check_.files.begin(), check_.files.end(),
                   check_.files.begin(), Unmarked);
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
    throw ToolError(kExitUsage,
                    ErrorReport(Shown(error.what()), UsageHint(argc, argv)));
  }
  return command_();
}

std::string CommandLine::UsageHint(int argc, char** argv) const {
  const auto commands = app_.get_subcommands();
  std::string hint = "see: quarry-config ";
  if (!commands.empty()) hint += commands.front()->get_name() + ' ';
  hint += "--help";
  const bool dashes = std::any_of(argv + 1, argv + argc, [](const char* word) {
    return word[0] == '-' && word[1] != '\0' && word[1] != '-';
  });
  if (dashes) {
    hint += "; put \"--\" before a name or value that begins with \"-\"";
  }
  return hint;
}

// Before CLI11 parses: its own message would not say what is wrong.
void CommandLine::DemandKnownCommand(
    const std::vector<std::string>& words) const {
  const std::string help_hint = "see: quarry-config --help";
  const std::string name = words.empty() ? "" : words.front();
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
