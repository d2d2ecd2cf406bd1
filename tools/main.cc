// quarry-config: checks, queries and edits configuration files. Here stand the
// command line and the way from any failure to an exit status.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <functional>
#include <list>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "tools/declare_commands.h"
#include "tools/display.h"
#include "tools/errors.h"
#include "tools/files.h"
#include "tools/nearest.h"
#include "tools/version.h"

namespace quarry::tool {

namespace {

const char kInput[] = "FILE may be \"-\" for standard input.\n";
const char kStatuses[] =
    "\"--\" ends the options.\n"
    "Exit status: 0 done; 1 the answer is no (errors found, option absent, a\n"
    "value that would not be read back); 2 wrong usage; 3 it could not be\n"
    "done (a file unreadable, invalid, locked or not written).";

// The option that a word of the command line sets; empty for other words. A
// number is none.
std::string OptionNameIn(const std::string& word) {
  if (word.size() < 2 || word[0] != '-') return "";
  if (word[1] == '-') return word.substr(0, word.find('='));
  return word[1] >= '0' && word[1] <= '9' ? "" : word.substr(0, 2);
}

// CLI11's message, in our words where it is not one for users.
std::string UsageMessage(const CLI::ParseError& error) {
  std::string text = error.what();
  if (error.get_name() == "ArgumentMismatch") {
    return text.substr(0, text.find(':')) + " needs a value behind it";
  }
  const std::string excludes = " excludes ";
  const std::size_t at = text.find(excludes);
  if (error.get_name() != "ExcludesError" || at == std::string::npos) {
    return text;
  }
  return "give " + text.substr(0, at) + " or " + text.substr(at + excludes.size()) + ", not both";
}

// The command line and what it asked for. Only the command that is wanted is
// declared, or all of them when it is none of them: to declare them takes
// longer than to read an ordinary file.
class CommandLine {
 public:
  explicit CommandLine(std::vector<std::string> words);

  // Throws ToolError.
  int Run();

 private:
  bool Declare(const std::string& wanted);
  void Parse();
  void DemandCommand() const;
  void DemandKnownOptions() const;
  std::string UsageHint(bool with_dashes) const;

  const std::vector<std::string> words_;
  CLI::App app_{"Checks, queries and edits configuration files.", "quarry-config"};
  bool is_command_ = false;  // the first word
  std::function<int()> action_;
};

CommandLine::CommandLine(std::vector<std::string> words) : words_(std::move(words)) {
  app_.require_subcommand(1);
  app_.footer(std::string(kInput) + kStatuses);
  app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app_.get_formatter()->label("REQUIRED", "");
  app_.get_formatter()->label("TEXT", "");
  app_.set_help_flag("-h,--help", "Show this help and end");
  app_.add_flag_callback(
      "--version", [] { throw CLI::CallForVersion(VersionText(), 0); },
      "Show the versions of the program and its libraries and end");
  is_command_ = !words_.empty() && Declare(words_.front());
  if (!is_command_) Declare("");
}

// Declares the wanted command, or all for ""; false when there is none.
bool CommandLine::Declare(const std::string& wanted) {
  bool declared = false;
  for (const Command& command : Commands()) {
    if (!wanted.empty() && wanted != command.name) continue;
    CLI::App* const app = app_.add_subcommand(command.name, command.description);
    app->footer((command.takes_input ? kInput : "") + std::string(kStatuses));
    app->group("Commands");
    const auto action = command.declare(app);
    for (CLI::Option* const option : app->get_options()) {
      if (option->get_positional()) continue;
      if (option->get_expected_max() > 0) option->take_last();
    }
    app->callback([this, action] { action_ = action; });
    declared = true;
  }
  return declared;
}

int CommandLine::Run() {
  DemandCommand();
  DemandKnownOptions();
  try {
    Parse();
  } catch (const CLI::CallForHelp&) {
    const auto commands = app_.get_subcommands();
    WriteStandardOutput(commands.empty() ? app_.help() : commands.front()->help("quarry-config"));
    return kExitDone;
  } catch (const CLI::CallForVersion& version) {
    WriteStandardOutput(version.what());
    return kExitDone;
  } catch (const CLI::ParseError& error) {
    throw ToolError(kExitUsage, ErrorReport(Shown(UsageMessage(error)), UsageHint(false)));
  }
  return action_();
}

// Gives CLI11 the words as it understands what was meant. It finds no text in
// "--default=", but in "--default" and an empty word.
void CommandLine::Parse() {
  std::vector<std::string> words;
  bool options = true;
  for (std::string word : words_) {
    options = options && word != "--";
    const bool empty_value =
        options && word.size() > 3 && word.substr(0, 2) == "--" && word.back() == '=';
    if (empty_value) word.pop_back();
    words.push_back(MarkedIfListed(words_.front(), word));
    if (empty_value) words.emplace_back();
  }
  std::reverse(words.begin(), words.end());  // as CLI11 wants it
  app_.parse(words);
}

std::string CommandLine::UsageHint(bool with_dashes) const {
  std::string hint = "see: quarry-config ";
  if (is_command_) hint += words_.front() + ' ';
  hint += "--help";
  if (with_dashes) {
    hint += "; put \"--\" before a name or value that begins with \"-\"";
  }
  return hint;
}

// Before CLI11 parses: it would rather say what is missing.
void CommandLine::DemandKnownOptions() const {
  if (!is_command_) return;
  const CLI::App* const command = app_.get_subcommand(words_.front());
  for (std::size_t i = 1; i < words_.size() && words_[i] != "--"; ++i) {
    const std::string name = OptionNameIn(words_[i]);
    if (name.empty()) continue;
    const CLI::Option* const option = command->get_option_no_throw(name);
    if (option == nullptr) {
      throw ToolError(kExitUsage, ErrorReport("no option " + Quoted(name), UsageHint(true)));
    }
    const bool takes_value = option->get_expected_max() > 0;
    if (!takes_value && words_[i] != name) {
      throw ToolError(kExitUsage, ErrorReport(name + " takes no value", UsageHint(false)));
    }
    if (takes_value && words_[i] == name) ++i;
  }
}

// Before CLI11 parses: its own message would not say what is wrong.
void CommandLine::DemandCommand() const {
  const std::string name = words_.empty() ? "" : words_.front();
  const std::string help_hint = name.substr(0, 1) == "-"
                                    ? "options stand behind the command; see: quarry-config --help"
                                    : "see: quarry-config --help";
  if (name.empty()) {
    throw ToolError(kExitUsage, ErrorReport("no command is given", help_hint));
  }
  if (is_command_ || app_.get_option_no_throw(name) != nullptr) return;
  std::list<std::string> known;
  for (const Command& command : Commands()) known.emplace_back(command.name);
  const auto nearest = NearestNames(name, known);
  throw ToolError(kExitUsage,
                  ErrorReport("no command " + Quoted(name),
                              nearest.empty() ? help_hint : "nearest: " + nearest.front()));
}

int Main(int argc, char** argv) {
  try {
    ReserveStandardStreams();
    return CommandLine({argv + 1, argv + argc}).Run();
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
