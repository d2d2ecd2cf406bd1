#include "tools/commands/other_words.h"

#include <algorithm>

#include "settings/suggestions.h"
#include "tools/check/plain_password.h"
#include "tools/commands/command.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

namespace {

struct OtherWord {
  const char* theirs;
  const char* ours;
};

constexpr OtherWord kOtherCommands[] = {
    {"add", "set"},
    {"put", "set"},
    {"rm", "unset"},
    {"remove", "unset"},
    {"delete", "unset"},
    {"del", "unset"},
    {"mv", "rename"},
    {"ls", "list"},
    {"show", "list, get or dump"},
    {"print", "list, get or dump"},
    {"cat", "dump"},
    {"grep", "survey"},
    {"fmt", "dump"},
    {"lint", "check"},
    {"validate", "check"},
    {"test", "check"},
    {"encrypt", "seal"},
    {"version", "--version"},
    {"l", "list"},
    {"e", "edit"},
    {"v", "--version"},
    {"V", "--version"},
};

// What does not begin with "-" is the hint itself.
constexpr OtherWord kOtherOptions[] = {
    {"-c", "--create"},
    {"-d", "--default"},
    {"-j", "--json"},
    {"-n", "--dry-run"},
    {"-s", "--strict"},
    {"--output", "-o"},
    {"-f", "FILE is an argument, without an option before it"},
    {"-i", "set, unset and edit change the file itself"},
    {"-o", "the output is standard output: > OUT"},
    {"-q", "messages go to standard error: 2>/dev/null"},
    {"-v", "see: quarry-config --version"},
};

template <std::size_t size>
std::string OursFor(const std::string& word, const OtherWord (&table)[size]) {
  const auto* const found = std::find_if(std::begin(table), std::end(table),
                                         [&](const OtherWord& row) { return word == row.theirs; });
  return found == std::end(table) ? "" : found->ours;
}

bool IsCommand(const std::string& word) {
  const auto& all = Commands();
  return std::any_of(all.begin(), all.end(),
                     [&](const Command& command) { return word == command.name; });
}

std::string NearestCommand(const std::string& word) {
  std::list<std::string> known;
  for (const Command& command : Commands()) known.emplace_back(command.name);
  const auto near = settings::SuggestNames(word, known);
  return near.empty() ? "" : near.front();
}

std::string WithoutDashes(const std::string& word) {
  return word.substr(std::min(word.find_first_not_of('-'), word.size()));
}

// Makes two words of one. Returns false, and changes nothing, when one of them would be empty and
// may not be.
bool SplitWord(std::vector<std::string>* words, std::size_t index, std::size_t at,
               bool may_end_there) {
  const std::string word = (*words)[index];
  if (at == std::string::npos || at == 0 || (at + 1 == word.size() && !may_end_there)) return false;
  (*words)[index] = word.substr(0, at);
  words->insert(words->begin() + static_cast<std::ptrdiff_t>(index) + 1, word.substr(at + 1));
  return true;
}

std::string CommandText(const std::string& command, const std::vector<std::string>& arguments) {
  std::string text = "quarry-config " + command;
  const bool has_dash = std::any_of(std::next(arguments.begin()), arguments.end(),
                                    [](const std::string& word) { return word[0] == '-'; });
  if (has_dash) text += " --";
  text += ' ' + (arguments[0] == "-" ? arguments[0] : ShellQuotedFile(arguments[0]));
  for (std::size_t i = 1; i < arguments.size(); ++i) text += ' ' + ShellQuoted(arguments[i]);
  return text;
}

}  // namespace

std::string HintForUnknownCommand(const std::vector<std::string>& words) {
  const std::string& word = words.front();
  if (word == "help" && words.size() > 1 && IsCommand(words[1])) {
    return "see: quarry-config " + words[1] + " --help";
  }
  if (word == "help") return "";
  const std::string name = WithoutDashes(word);
  std::string ours = OursFor(name, kOtherCommands);
  if (ours.empty()) ours = NearestCommand(name);
  return ours.empty() ? "" : "did you mean " + ours + "?";
}

std::string HintForUnknownOption(const std::string& option, const std::list<std::string>& known) {
  std::string ours = OursFor(option, kOtherOptions);
  if (!ours.empty() && ours[0] != '-') return ours;
  if (std::find(known.begin(), known.end(), ours) != known.end()) {
    return "did you mean " + ours + "?";
  }
  const auto near = settings::SuggestNames(option, known);
  return near.empty() || option.size() < 3 ? "" : "did you mean " + near.front() + "?";
}

std::string HintForJoinedNames(const std::string& command, const std::vector<std::string>& given,
                               std::size_t wanted) {
  constexpr std::size_t kWithValue = 4;  // FILE SECTION OPTION VALUE
  if (given.size() < 2) return "";
  std::vector<std::string> words = given;
  if (wanted == kWithValue) SplitWord(&words, words.size() - 1, words.back().find('='), true);
  if (words.size() < wanted) SplitWord(&words, 1, words[1].rfind('.'), false);
  if (words.size() != wanted) return "";
  if (wanted == kWithValue) words[3] = RedactedValue(words[2], words[3]);
  return "did you mean: " + CommandText(command, words);
}

std::string HintForTooMany(const std::string& command) {
  if (command == "get") return "for many files: quarry-config survey SECTION OPTION FILE...";
  return command == "list" ? "for many files: quarry-config list --origin FILE FILE..." : "";
}

}  // namespace quarry::tool
