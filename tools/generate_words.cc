// generate_words TEMPLATE: writes the template to standard output, with every line "@NAME@" or
// "@NAME COMMAND@" replaced by what the declarations of the commands say. Makes the shell
// completions and the command part of the man page, when the program is built.

#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include "tools/commands/command.h"

namespace quarry::tool {

namespace {

bool IsOption(const Word& word) { return !word.name.empty(); }
bool IsFlag(const Word& word) { return word.placeholder.empty(); }

// The options of a command, then its arguments; without --help.
std::vector<Word> WordsOf(const Command& command) {
  std::vector<Word> words = command.declare().words;
  std::stable_partition(words.begin(), words.end(), IsOption);
  return words;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

// What the scripts call the kind of a value.
std::string KindName(const Word& word) {
  switch (word.kind) {
    case ValueKind::kFile:
      return "files";
    case ValueKind::kFolder:
      return "folders";
    case ValueKind::kSection:
      return "sections";
    case ValueKind::kOption:
      return "options";
    case ValueKind::kChoice:
      return "words " + Joined(word.choices);
    case ValueKind::kText:
      break;
  }
  return "nothing";
}

std::string Escaped(std::string text, const std::string& special) {
  for (std::size_t at = 0; (at = text.find_first_of(special, at)) != std::string::npos; at += 2) {
    text.insert(at, "\\");
  }
  return text;
}

std::string CommandNames() {
  std::string names;
  for (const Command& command : Commands()) names += std::string(command.name) + ' ';
  return names;
}

// For bash.

std::string BashCommands() { return "  commands='" + CommandNames() + "'\n"; }

std::string BashOptions() {
  std::string lines;
  for (const Command& command : Commands()) {
    std::string names;
    for (const Word& word : WordsOf(command)) {
      if (IsOption(word)) names += word.name + ' ';
    }
    lines += "    " + std::string(command.name) + ") echo " + names + "--help ;;\n";
  }
  return lines;
}

std::string BashKinds() {
  std::string lines;
  for (const Command& command : Commands()) {
    int number = 0;
    for (const Word& word : WordsOf(command)) {
      if (IsFlag(word)) continue;
      const std::string place = IsOption(word)  ? word.name
                                : word.repeated ? "[0-9]*"
                                                : std::to_string(number++);
      lines +=
          "    " + std::string(command.name) + ',' + place + ") echo " + KindName(word) + " ;;\n";
    }
  }
  return lines;
}

// For zsh.

std::string ZshCommands() {
  std::string lines;
  for (const Command& command : Commands()) {
    lines +=
        "    \"" + std::string(command.name) + ':' + Escaped(command.description, "\"$`:") + "\"\n";
  }
  return lines;
}

std::string ZshAction(const Word& word) {
  if (word.kind == ValueKind::kChoice) return '(' + Joined(word.choices) + ')';
  if (word.kind == ValueKind::kText) return " ";
  std::string action = "_quarry_config_" + KindName(word);
  if (IsOption(word) || word.needs.empty()) return action;
  return "{ (( $words[(I)" + word.needs + "] )) && " + action + " }";
}

std::string ZshWord(const Word& word, int number) {
  std::string spec;
  if (IsOption(word)) {
    if (!word.excludes.empty()) spec += '(' + word.excludes + ')';
    if (word.repeated) spec += '*';
    spec += word.name + (IsFlag(word) ? "" : word.name.size() > 2 ? "=" : "");
    spec += '[' + Escaped(word.help, "[]:") + ']';
  } else {
    spec += word.repeated ? "*" : std::to_string(number) + (word.required ? "" : ":");
  }
  if (!IsFlag(word)) spec += ':' + word.placeholder + ':' + ZshAction(word);
  for (std::size_t at = 0; (at = spec.find('\'', at)) != std::string::npos; at += 4) {
    spec.replace(at, 1, "'\\''");
  }
  return " '" + spec + '\'';
}

std::string ZshArguments() {
  std::string lines;
  for (const Command& command : Commands()) {
    lines +=
        "    " + std::string(command.name) + ") _arguments -S : '--help[Show this help and end]'";
    int number = 1;
    for (const Word& word : WordsOf(command)) {
      lines += ZshWord(word, number);
      if (!IsOption(word)) ++number;
    }
    lines += " ;;\n";
  }
  return lines;
}

// For the man page, in scdoc.

std::string ManWord(const Word& word) {
  const std::string value = IsFlag(word) ? "" : '_' + word.placeholder + '_';
  if (!IsOption(word)) return value + (word.repeated ? "..." : "");
  return '*' + word.name + '*' + (value.empty() ? "" : ' ' + value);
}

std::string ManSynopsis(const Command& command) {
  std::string line = '*' + std::string(command.name) + '*';
  for (const Word& word : WordsOf(command)) {
    line += ' ' + (word.required ? ManWord(word) : '[' + ManWord(word) + ']');
    if (IsOption(word) && word.repeated) line += "...";
  }
  return line + '\n';
}

std::string ManOptions(const Command& command) {
  std::string lines;
  for (const Word& word : WordsOf(command)) {
    if (!IsOption(word)) continue;
    lines += (lines.empty() ? "\t" : "\n\t") + ManWord(word) + "\n\t\t" + Escaped(word.help, "_*") +
             ".\n";
  }
  return lines;
}

// NOLINTBEGIN(cert-err58-cpp): without memory there is nothing to generate.
const std::map<std::string, std::function<std::string()>> kBlocks = {
    {"bash-commands", BashCommands}, {"bash-options", BashOptions},   {"bash-kinds", BashKinds},
    {"zsh-commands", ZshCommands},   {"zsh-arguments", ZshArguments},
};
const std::map<std::string, std::function<std::string(const Command&)>> kCommandBlocks = {
    {"synopsis", ManSynopsis},
    {"options", ManOptions},
};
// NOLINTEND(cert-err58-cpp)

const Command& CommandNamed(const std::string& name) {
  for (const Command& command : Commands()) {
    if (name == command.name) return command;
  }
  throw std::runtime_error("there is no command " + name);
}

// The text for the directive "NAME" or "NAME COMMAND".
std::string BlockFor(const std::string& directive, std::set<std::string>* described) {
  std::istringstream words(directive);
  std::string name, command;
  words >> name >> command;
  const auto block = kBlocks.find(name);
  if (block != kBlocks.end()) return block->second();
  const auto command_block = kCommandBlocks.find(name);
  if (command_block == kCommandBlocks.end()) throw std::runtime_error("unknown: @" + name + '@');
  described->insert(directive);
  return command_block->second(CommandNamed(command));
}

// A page that describes commands must describe them all, and all their options.
void RequireAll(const std::set<std::string>& described) {
  if (described.empty()) return;
  for (const Command& command : Commands()) {
    for (const auto& [name, block] : kCommandBlocks) {
      const std::string directive = name + ' ' + command.name;
      if (block(command).empty() || described.count(directive) > 0) continue;
      throw std::runtime_error('@' + directive + "@ is missing");
    }
  }
}

void Generate(std::istream* in, std::ostream* out) {
  std::set<std::string> described;
  for (std::string line; std::getline(*in, line);) {
    const bool is_directive = line.size() > 2 && line.front() == '@' && line.back() == '@';
    *out << (is_directive ? BlockFor(line.substr(1, line.size() - 2), &described) : line + '\n');
  }
  RequireAll(described);
}

}  // namespace

}  // namespace quarry::tool

int main(int argc, char** argv) {
  try {
    std::ifstream in(argc == 2 ? argv[1] : "");
    if (!in) throw std::runtime_error("usage: generate_words TEMPLATE");
    std::ostringstream text;  // no output when something is missing
    quarry::tool::Generate(&in, &text);
    std::cout << text.str();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "generate_words: " << (argc == 2 ? argv[1] : "") << ": " << error.what() << '\n';
    return 1;
  }
}
