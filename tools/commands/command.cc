#include "tools/commands/command.h"

#include <algorithm>
#include <list>

#include "settings/suggestions.h"

namespace quarry::tool {

namespace {

Word ValueWord(const std::string& placeholder, ValueKind kind, const std::string& help) {
  Word word;
  word.placeholder = placeholder;
  word.kind = kind;
  word.help = help;
  return word;
}

}  // namespace

Word Argument(const std::string& placeholder, ValueKind kind, std::string* value,
              const std::string& help) {
  Word word = ValueWord(placeholder, kind, help);
  word.required = true;
  word.store = [value](const std::string& given) { *value = given; };
  return word;
}

Word OptionalArgument(const std::string& placeholder, ValueKind kind,
                      std::optional<std::string>* value, const std::string& help) {
  Word word = ValueWord(placeholder, kind, help);
  word.store = [value](const std::string& given) { *value = given; };
  return word;
}

Word RepeatedArgument(const std::string& placeholder, ValueKind kind,
                      std::vector<std::string>* values, const std::string& help) {
  Word word = ValueWord(placeholder, kind, help);
  word.required = true;
  word.repeated = true;
  word.store = [values](const std::string& given) { values->push_back(given); };
  return word;
}

Word Flag(const std::string& name, bool* given, const std::string& help) {
  Word word = ValueWord("", ValueKind::kText, help);
  word.name = name;
  word.store = [given](const std::string& /*value*/) { *given = true; };
  return word;
}

Word Option(const std::string& name, const std::string& placeholder, ValueKind kind,
            std::optional<std::string>* value, const std::string& help) {
  Word word = OptionalArgument(placeholder, kind, value, help);
  word.name = name;
  return word;
}

Word RepeatedOption(const std::string& name, const std::string& placeholder, ValueKind kind,
                    std::vector<std::string>* values, const std::string& help) {
  Word word = RepeatedArgument(placeholder, kind, values, help);
  word.name = name;
  word.required = false;
  return word;
}

void RequireChoice(const std::string& option, const std::string& value,
                   const std::vector<std::string>& choices) {
  const std::list<std::string> known(choices.begin(), choices.end());
  if (std::find(known.begin(), known.end(), value) != known.end()) return;
  const auto near = settings::SuggestNames(value, known);
  std::string hint;
  for (const std::string& choice : choices) hint += (hint.empty() ? "give " : " or ") + choice;
  if (!near.empty()) hint = "did you mean " + settings::Quoted(near.front()) + '?';
  throw ToolError(kExitUsage, "unknown value " + settings::Quoted(value) + " for " + option, hint);
}

Word ProgramOption(Program* program, const std::string& help) {
  return ChoiceOption<Program>("--as", "PROGRAM", program,
                               {{"agent", Program::kAgent}, {"client", Program::kClient}}, help);
}

Word ShowSecretsFlag(bool* show_secrets) {
  return Flag("--show-secrets", show_secrets, "Do not hide passwords that are in plain text");
}

}  // namespace quarry::tool
