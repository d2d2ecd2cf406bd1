// The commands on the command line: their names, what they are for, their
// words.
#ifndef QUARRY_TOOLS_DECLARE_COMMANDS_H_
#define QUARRY_TOOLS_DECLARE_COMMANDS_H_

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

namespace quarry::tool {

struct Command {
  const char* name;
  const char* description;
  bool takes_input;  // "-" stands for standard input
  // Declares the words that the command takes and returns what carries it out,
  // to be called once they are there. It returns the exit status.
  std::function<int()> (*declare)(CLI::App* command);
};

// All of them, in the order in which they are shown.
const std::vector<Command>& Commands();

// CLI11 takes a word in brackets for a list of words where it expects several.
// This marks such a word; what the command gets is as it was.
std::string MarkedIfListed(const std::string& command, const std::string& word);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_DECLARE_COMMANDS_H_
