// The interface between the command line and the file of each command: the words of the command,
// and the action that carries it out. Help, completions and the man page are made from the same
// words.
#ifndef QUARRY_TOOLS_COMMANDS_COMMAND_H_
#define QUARRY_TOOLS_COMMANDS_COMMAND_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/check/check.h"
#include "tools/terminal/errors.h"

namespace quarry::tool {

// What a value names; shells complete it.
enum class ValueKind { kText, kFile, kFolder, kSection, kOption, kChoice };

// An argument or an option.
struct Word {
  std::string name;         // of an option, with its dashes; empty for an argument
  std::string placeholder;  // of an argument, or of an option's value; empty for a flag
  ValueKind kind = ValueKind::kText;
  bool required = false;
  bool repeated = false;
  std::string help;
  std::vector<std::string> choices;  // of kChoice; `store` refuses others
  std::string excludes;              // an option that may not be given as well
  // An option that must be given as well; an argument is one too many without it.
  std::string needs;
  std::function<void(const std::string& value)> store;  // called for every value, and for a flag
};

// Each stores the value in the caller's variable, which must live as long as the word.
Word Argument(const std::string& placeholder, ValueKind kind, std::string* value,
              const std::string& help);
Word OptionalArgument(const std::string& placeholder, ValueKind kind,
                      std::optional<std::string>* value, const std::string& help);
Word RepeatedArgument(const std::string& placeholder, ValueKind kind,
                      std::vector<std::string>* values, const std::string& help);
Word Flag(const std::string& name, bool* given, const std::string& help);
Word Option(const std::string& name, const std::string& placeholder, ValueKind kind,
            std::optional<std::string>* value, const std::string& help);
Word RepeatedOption(const std::string& name, const std::string& placeholder, ValueKind kind,
                    std::vector<std::string>* values, const std::string& help);

// Throws ToolError unless the option's value is one of its choices.
void RequireChoice(const std::string& option, const std::string& value,
                   const std::vector<std::string>& choices);

// An option whose value is one of a few words.
template <typename Choice>
Word ChoiceOption(const std::string& name, const std::string& placeholder, Choice* chosen,
                  const std::vector<std::pair<std::string, Choice>>& choices,
                  const std::string& help) {
  Word word;
  word.name = name;
  word.placeholder = placeholder;
  word.kind = ValueKind::kChoice;
  word.help = help;
  for (const auto& [text, choice] : choices) word.choices.push_back(text);
  word.store = [name, chosen, choices, words = word.choices](const std::string& value) {
    RequireChoice(name, value, words);
    for (const auto& [text, choice] : choices) {
      if (text == value) *chosen = choice;
    }
  };
  return word;
}

// Options that several commands have.
Word ProgramOption(Program* program, const std::string& help);
Word ShowSecretsFlag(bool* show_secrets);

// Carries out a command whose words have been stored. Throws settings::Error.
using Action = std::function<ExitStatus()>;

struct Declaration {
  std::vector<Word> words;  // in the order in which help shows them
  Action action;
};

// The action that calls `run` with the request in which the words are stored.
template <typename Request>
Action BindRequest(const std::shared_ptr<Request>& request, ExitStatus (*run)(const Request&)) {
  return [request, run] { return run(*request); };
}

// A row of the table of commands.
struct Command {
  const char* name;
  const char* description;
  bool reads_input;  // "-" means standard input
  Declaration (*declare)();
};

// All commands, in the order in which help shows them.
const std::vector<Command>& Commands();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_COMMAND_H_
