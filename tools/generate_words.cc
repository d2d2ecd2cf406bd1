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

// What shells complete where an argument or a value has this placeholder.
const std::map<std::string, std::string> kKinds = {
    {"FILE", "files"},       {"A", "files"},        {"B", "files"},
    {"CHANGES", "files"},    {"OUT", "files"},      {"DIR", "folders"},
    {"SECTION", "sections"}, {"OPTION", "options"}, {"VALUE", "nothing"}};

struct Word {
  std::string name;         // of an option; empty for an argument
  std::string placeholder;  // of an argument, or of an option's value; empty for a flag
  std::string kind;         // of kKinds, or "words WORD..."
  std::string help;
  std::vector<std::string> excludes;  // options that may not be given, too
  bool required;
  bool repeated;

  bool is_option() const { return !name.empty(); }
  bool is_flag() const { return placeholder.empty(); }
};

// "PLACEHOLDER" or "PLACEHOLDER:{WORD,WORD}".
void SetPlaceholder(const std::string& type, const std::string& command, Word* word) {
  const std::size_t choices = type.find(":{");
  word->placeholder = type.substr(0, choices);
  if (choices != std::string::npos) {
    word->kind = "words " + type.substr(choices + 2, type.size() - choices - 3);
    std::replace(word->kind.begin(), word->kind.end(), ',', ' ');
    return;
  }
  const auto known = kKinds.find(word->placeholder);
  if (known == kKinds.end()) {
    throw std::runtime_error("what shall shells complete for " + word->placeholder +
                             " of the command " + command + "? Add it to kKinds.");
  }
  word->kind = known->second;
}

Word WordFor(const CLI::Option& option, const std::string& command) {
  Word word = {};
  word.help = option.get_description();
  word.required = option.get_required();
  word.repeated = option.get_allow_extra_args();
  if (option.get_positional()) {
    SetPlaceholder(option.get_name(true), command, &word);
    return word;
  }
  word.name = option.get_name();
  if (option.get_expected_max() > 0) SetPlaceholder(option.get_type_name(), command, &word);
  for (const CLI::Option* other : option.get_excludes()) word.excludes.push_back(other->get_name());
  return word;
}

// The options of a command, then its arguments; without --help.
std::vector<Word> WordsOf(const Command& command) {
  CLI::App app;
  const Action unused = command.declare(&app);
  std::vector<Word> words, arguments;
  for (const CLI::Option* option : app.get_options()) {
    if (option == app.get_help_ptr()) continue;
    Word word = WordFor(*option, command.name);
    (word.is_option() ? words : arguments).push_back(word);
  }
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
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
      if (word.is_option()) names += word.name + ' ';
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
      if (word.is_flag()) continue;
      const std::string place = word.is_option() ? word.name
                                : word.repeated  ? "[0-9]*"
                                                 : std::to_string(number++);
      lines += "    " + std::string(command.name) + ',' + place + ") echo " + word.kind + " ;;\n";
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
  if (word.kind.substr(0, 6) == "words ") return '(' + word.kind.substr(6) + ')';
  return word.kind == "nothing" ? " " : "_quarry_config_" + word.kind;
}

std::string ZshWord(const Word& word, int number) {
  std::string spec;
  if (word.is_option()) {
    if (!word.excludes.empty()) spec += '(' + word.excludes.front() + ')';
    spec += word.name + (word.is_flag() ? "" : word.name.size() > 2 ? "=" : "");
    spec += '[' + Escaped(word.help, "[]:") + ']';
  } else {
    spec += word.repeated ? "*" : std::to_string(number) + (word.required ? "" : ":");
  }
  if (!word.is_flag()) spec += ':' + word.placeholder + ':' + ZshAction(word);
  for (std::size_t at = 0; (at = spec.find('\'', at)) != std::string::npos; at += 4) {
    spec.replace(at, 1, "'\\''");
  }
  return " '" + spec + '\'';
}

std::string ZshArguments() {
  std::string lines;
  for (const Command& command : Commands()) {
    lines += "    " + std::string(command.name) + ") _arguments -S : --help";
    int number = 1;
    for (const Word& word : WordsOf(command)) {
      lines += ZshWord(word, number);
      if (!word.is_option()) ++number;
    }
    lines += " ;;\n";
  }
  return lines;
}

// For the man page, in scdoc.

std::string ManWord(const Word& word) {
  const std::string value = word.is_flag() ? "" : '_' + word.placeholder + '_';
  if (!word.is_option()) return value + (word.repeated ? "..." : "");
  return '*' + word.name + '*' + (value.empty() ? "" : ' ' + value);
}

std::string ManSynopsis(const Command& command) {
  std::string line = '*' + std::string(command.name) + '*';
  for (const Word& word : WordsOf(command)) {
    line += ' ' + (word.required ? ManWord(word) : '[' + ManWord(word) + ']');
  }
  return line + '\n';
}

std::string ManOptions(const Command& command) {
  std::string lines;
  for (const Word& word : WordsOf(command)) {
    if (!word.is_option()) continue;
    lines += (lines.empty() ? "\t" : "\n\t") + ManWord(word) + "\n\t\t" + Escaped(word.help, "_*") +
             ".\n";
  }
  return lines;
}

const std::map<std::string, std::function<std::string()>> kBlocks = {
    {"bash-commands", BashCommands}, {"bash-options", BashOptions},   {"bash-kinds", BashKinds},
    {"zsh-commands", ZshCommands},   {"zsh-arguments", ZshArguments},
};
const std::map<std::string, std::function<std::string(const Command&)>> kCommandBlocks = {
    {"synopsis", ManSynopsis},
    {"options", ManOptions},
};

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
  described->insert(command);
  return command_block->second(CommandNamed(command));
}

// A page that describes commands must describe them all.
void RequireAll(const std::set<std::string>& described) {
  for (const Command& command : Commands()) {
    if (described.empty() || described.count(command.name) > 0) continue;
    throw std::runtime_error("@synopsis " + std::string(command.name) + "@ is missing");
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
