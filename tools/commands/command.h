// What a command's own file gives to the command line, and what the files share.
#ifndef QUARRY_TOOLS_COMMANDS_COMMAND_H_
#define QUARRY_TOOLS_COMMANDS_COMMAND_H_

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/check/check.h"
#include "tools/terminal/errors.h"

namespace quarry::tool {

// Carries out a command whose words have been parsed. Throws settings::Error.
using Action = std::function<ExitStatus()>;

// A row of the table of commands.
struct Command {
  const char* name;
  const char* description;
  bool reads_input;  // "-" means standard input
  // Declares the command's arguments and options, and returns what carries it out once they are
  // parsed. Their placeholders (FILE, SECTION, ...) decide what shells complete; see
  // generate_words.cc.
  Action (*declare)(CLI::App* app);
};

// All commands, in the order in which help shows them.
const std::vector<Command>& Commands();

// The action that calls `run` with the request that the declaration filled.
template <typename Request>
Action BindRequest(const std::shared_ptr<Request>& request, ExitStatus (*run)(const Request&)) {
  return [request, run] { return run(*request); };
}

// Adds an option whose value is one of a few words.
template <typename Choice>
CLI::Option* AddChoice(CLI::App* app, const std::string& name, Choice* chosen,
                       const std::vector<std::pair<std::string, Choice>>& choices,
                       const std::string& help) {
  std::vector<std::string> words;
  for (const auto& [word, choice] : choices) words.push_back(word);
  const auto choose = [chosen, choices](const std::string& given) {
    for (const auto& [word, choice] : choices) {
      if (word == given) *chosen = choice;
    }
  };
  return app->add_option_function<std::string>(name, choose, help)->check(CLI::IsMember(words));
}

// Options that several commands have.
void AddProgram(CLI::App* app, Program* program);
void AddDryRun(CLI::App* app, bool* dry_run);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_COMMAND_H_
