// CLI11 parses the words of one command. Only that command is declared: to declare them all takes
// longer than to read an ordinary file. Workarounds for CLI11 2.1, which has no settings for these:
//   SplitEmptyValues       CLI11 looks for the value of "--default=" in the next word
//   ProtectBrackets        CLI11 splits a word in brackets where an argument may be repeated
//   Extras                 CLI11 lists these arguments in reverse
//   RequireKnownOptions    CLI11 reports a missing argument rather than an unknown option
//   FillRequired           CLI11 gives an optional argument its word before a required one after it
//   Wrapped                CLI11 writes a description in one line, however long
//   UsageMessage           some messages of CLI11 are not meant for users
#include "tools/commands/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <list>
#include <sstream>
#include <utility>

#include "tools/commands/command.h"
#include "tools/commands/other_words.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/version.h"

namespace quarry::tool {

using settings::Quoted;

namespace {

const char kInput[] = "FILE may be \"-\" for standard input.\n";
const char kStatuses[] =
    "\"--\" ends the options.\n"
    "Exit status: 0 done; 1 the answer is no (errors found, option absent, a\n"
    "value that would not be read back); 2 wrong usage; 3 it could not be\n"
    "done (a file unreadable, invalid, locked or not written).";
const char kDescription[] = "Checks, queries and edits configuration files.";
constexpr char kProtection = '\x01';
constexpr std::size_t kHelpColumns = 80;
constexpr std::size_t kDescriptionIndent = 30;

void SetUpHelp(CLI::App* app) {
  app->get_formatter()->label("SUBCOMMAND", "COMMAND");
  app->get_formatter()->label("REQUIRED", "");
  app->get_formatter()->label("TEXT", "");
  app->get_formatter()->column_width(kDescriptionIndent);
  app->set_help_flag("-h,--help", "Show this help and end");
}

// The description of an option or a command, in lines that fit beside its name.
std::string Wrapped(const std::string& description) {
  std::istringstream words(description);
  std::string text;
  std::size_t columns = 0;
  for (std::string word; words >> word;) {
    const bool fits = columns + 1 + word.size() <= kHelpColumns - kDescriptionIndent;
    if (!text.empty()) text += fits ? ' ' : '\n';
    columns = fits ? columns + 1 + word.size() : word.size();
    text += word;
  }
  return text;
}

// The help that lists the commands.
std::string Help() {
  CLI::App app(kDescription, "quarry-config");
  SetUpHelp(&app);
  app.require_subcommand(1);
  app.add_flag("--version")->description(Wrapped("Show the versions of the program and libraries"));
  for (const Command& command : Commands()) {
    app.add_subcommand(command.name, Wrapped(command.description))->group("Commands");
  }
  app.footer(std::string(kInput) + kStatuses);
  return app.help();
}

const Command* FindCommand(const std::string& name) {
  const auto& all = Commands();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const Command& command) { return name == command.name; });
  return found == all.end() ? nullptr : &*found;
}

[[noreturn]] void ThrowNoCommand(const std::vector<std::string>& words) {
  const std::string word = words.empty() ? "" : words.front();
  if (word.empty()) {
    throw ToolError(kExitUsage, "no command is given", "see: quarry-config --help");
  }
  std::string hint = HintForUnknownCommand(words);
  if (hint.empty()) {
    hint = std::string(word[0] == '-' ? "options go after the command; " : "") +
           "see: quarry-config --help";
  }
  throw ToolError(kExitUsage, "unknown command " + Quoted(word), hint);
}

// The name of the option in a word; empty for other words. A number is not an option.
std::string OptionNameIn(const std::string& word) {
  if (word.size() < 2 || word[0] != '-') return "";
  if (word[1] == '-') return word.substr(0, word.find('='));
  return word[1] >= '0' && word[1] <= '9' ? "" : word.substr(0, 2);
}

// The word without the mark of ProtectBrackets.
std::string Unprotected(const std::string& word) {
  return word.substr(0, 1) == std::string(1, kProtection) ? word.substr(1) : word;
}

std::string UsageMessage(const CLI::ParseError& error) {
  std::string text = error.what();
  text.erase(std::remove(text.begin(), text.end(), kProtection), text.end());
  if (error.get_name() == "ArgumentMismatch") {
    return text.substr(0, text.find(':')) + " requires a value";
  }
  const std::string excludes = " excludes ";
  const std::size_t at = text.find(excludes);
  if (error.get_name() != "ExcludesError" || at == std::string::npos) return text;
  return "give " + text.substr(0, at) + " or " + text.substr(at + excludes.size()) + ", not both";
}

// The words of one command.
class CommandLine {
 public:
  CommandLine(const Command& command, std::vector<std::string> words);

  ExitStatus Run();

 private:
  CLI::Option* Add(const Word& word);
  bool FollowsOptional(std::size_t index) const;
  void FillRequired(std::vector<std::vector<std::string>>* values) const;
  void StoreAll() const;
  std::string HelpText();
  std::vector<std::string> Extras() const;
  [[noreturn]] void ThrowTooMany(const std::vector<std::string>& extras) const;
  void RequireOptionsOfArguments() const;
  void RequireKnownOptions() const;
  [[noreturn]] void ThrowUnknownOption(const std::string& name) const;
  void SplitEmptyValues();
  void ProtectBrackets();
  std::string UsageHint() const;
  std::string HintForTooFew() const;

  const std::string command_;
  std::vector<std::string> words_;
  const Declaration declaration_;
  CLI::App app_;
  std::vector<CLI::Option*> options_;  // of the declared words
};

CommandLine::CommandLine(const Command& command, std::vector<std::string> words)
    : command_(command.name),
      words_(std::move(words)),
      declaration_(command.declare()),
      app_(command.description, "quarry-config " + command_) {
  SetUpHelp(&app_);
  app_.footer((command.reads_input ? kInput : "") + std::string(kStatuses));
  for (const Word& word : declaration_.words) options_.push_back(Add(word));
  for (std::size_t i = 0; i < options_.size(); ++i) {
    const Word& word = declaration_.words[i];
    if (FollowsOptional(i)) options_[i]->required(false);
    if (!word.excludes.empty()) options_[i]->excludes(app_.get_option(word.excludes));
    if (!word.needs.empty() && !word.name.empty()) options_[i]->needs(app_.get_option(word.needs));
  }
}

CLI::Option* CommandLine::Add(const Word& word) {
  if (word.placeholder.empty()) return app_.add_flag(word.name)->description(Wrapped(word.help));
  const bool is_argument = word.name.empty();
  CLI::Option* const option = app_.add_option(is_argument ? word.placeholder : word.name);
  option->description(Wrapped(word.help))->required(word.required);
  if (!is_argument) option->type_name(word.placeholder);
  if (word.repeated && is_argument) option->expected(1, -1)->allow_extra_args();
  if (!is_argument && word.repeated) option->take_all();
  if (!is_argument && !word.repeated) option->take_last();
  return option;
}

ExitStatus CommandLine::Run() {
  RequireKnownOptions();
  SplitEmptyValues();
  ProtectBrackets();
  std::reverse(words_.begin(), words_.end());  // as CLI11 expects them
  try {
    app_.parse(words_);
  } catch (const CLI::CallForHelp&) {
    WriteStandardOutput(HelpText());
    return kExitDone;
  } catch (const CLI::ExtrasError&) {
    ThrowTooMany(Extras());
  } catch (const CLI::RequiredError& error) {
    throw ToolError(kExitUsage, UsageMessage(error), HintForTooFew());
  } catch (const CLI::ParseError& error) {
    throw ToolError(kExitUsage, UsageMessage(error), UsageHint());
  }
  RequireOptionsOfArguments();
  StoreAll();
  return declaration_.action();
}

void CommandLine::StoreAll() const {
  std::vector<std::vector<std::string>> values;
  for (const CLI::Option* const option : options_) values.push_back(option->results());
  FillRequired(&values);
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (const std::string& value : values[i]) declaration_.words[i].store(Unprotected(value));
  }
}

bool CommandLine::FollowsOptional(std::size_t index) const {
  if (index == 0 || !declaration_.words[index].required) return false;
  const Word& before = declaration_.words[index - 1];
  return before.name.empty() && !before.required;
}

void CommandLine::FillRequired(std::vector<std::vector<std::string>>* values) const {
  for (std::size_t i = 0; i < values->size(); ++i) {
    if (!FollowsOptional(i) || !(*values)[i].empty()) continue;
    (*values)[i].swap((*values)[i - 1]);
    if (!(*values)[i].empty()) continue;
    throw ToolError(kExitUsage, declaration_.words[i].placeholder + " is required",
                    HintForTooFew());
  }
}

std::string CommandLine::HelpText() {
  for (std::size_t i = 0; i < options_.size(); ++i) {
    options_[i]->required(declaration_.words[i].required);
  }
  return app_.help();
}

std::vector<std::string> CommandLine::Extras() const {
  std::vector<std::string> extras = app_.remaining();
  const auto mark = std::find(extras.begin(), extras.end(), "--");
  if (mark != extras.end()) extras.erase(mark);
  return extras;
}

void CommandLine::ThrowTooMany(const std::vector<std::string>& extras) const {
  std::string list;
  for (const std::string& extra : extras) {
    list += (list.empty() ? "" : ", ") + Quoted(Unprotected(extra));
  }
  Diagnostic diagnostic =
      Message("too many arguments: " + list,
              UsageHint() + "; put quotes around a name or value that contains blanks");
  const std::string hint = HintForTooMany(command_);
  if (!hint.empty()) diagnostic.hints.push_back(hint);
  throw ToolError(kExitUsage, {diagnostic});
}

void CommandLine::RequireOptionsOfArguments() const {
  for (std::size_t i = 0; i < options_.size(); ++i) {
    const Word& word = declaration_.words[i];
    if (!word.name.empty() || word.needs.empty() || options_[i]->count() == 0) continue;
    if (app_.get_option(word.needs)->count() == 0) ThrowTooMany(options_[i]->results());
  }
}

void CommandLine::RequireKnownOptions() const {
  for (std::size_t i = 0; i < words_.size() && words_[i] != "--"; ++i) {
    const std::string name = OptionNameIn(words_[i]);
    if (name.empty()) continue;
    const CLI::Option* const option = app_.get_option_no_throw(name);
    if (option == nullptr) ThrowUnknownOption(name);
    const bool expects_value = option->get_expected_max() > 0;
    if (!expects_value && words_[i] != name) {
      throw ToolError(kExitUsage, name + " takes no value", UsageHint());
    }
    if (expects_value && words_[i] == name) ++i;
  }
}

void CommandLine::ThrowUnknownOption(const std::string& name) const {
  std::list<std::string> known;
  for (const Word& word : declaration_.words) {
    if (!word.name.empty()) known.push_back(word.name);
  }
  const std::string hint = HintForUnknownOption(name, known);
  Diagnostic diagnostic =
      Message("unknown option " + Quoted(name), hint.empty() ? UsageHint() : hint);
  diagnostic.hints.emplace_back("put \"--\" before a name or value that begins with \"-\"");
  throw ToolError(kExitUsage, {diagnostic});
}

void CommandLine::SplitEmptyValues() {
  for (auto word = words_.begin(); word != words_.end() && *word != "--"; ++word) {
    if (word->size() <= 3 || word->substr(0, 2) != "--" || word->back() != '=') continue;
    word->pop_back();
    word = words_.insert(std::next(word), "");
  }
}

// Prefixes such words with kProtection, which StoreAll removes.
void CommandLine::ProtectBrackets() {
  for (std::string& word : words_) {
    if (!word.empty() && (word[0] == '[' || word[0] == kProtection)) word.insert(0, 1, kProtection);
  }
}

std::string CommandLine::HintForTooFew() const {
  if (declaration_.words.front().kind != ValueKind::kFile) return UsageHint();
  std::vector<std::string> given;
  std::size_t wanted = 0;
  for (std::size_t i = 0; i < options_.size(); ++i) {
    if (!declaration_.words[i].name.empty()) continue;
    ++wanted;
    for (const std::string& value : options_[i]->results()) given.push_back(Unprotected(value));
  }
  const std::string hint = HintForJoinedNames(command_, given, wanted);
  return hint.empty() ? UsageHint() : hint;
}

std::string CommandLine::UsageHint() const { return "see: quarry-config " + command_ + " --help"; }

}  // namespace

ExitStatus RunCommandLine(const std::vector<std::string>& words) {
  const std::string first = words.empty() ? "" : words.front();
  if (first == "-h" || first == "--help") {
    WriteStandardOutput(Help());
    return kExitDone;
  }
  if (first == "--version") {
    WriteStandardOutput(VersionText());
    return kExitDone;
  }
  const Command* const command = FindCommand(first);
  if (command == nullptr) ThrowNoCommand(words);
  return CommandLine(*command, {std::next(words.begin()), words.end()}).Run();
}

}  // namespace quarry::tool
