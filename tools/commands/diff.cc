// quarry-config diff

#include <optional>

#include "tools/check/plain_password.h"
#include "tools/commands/command.h"
#include "tools/commands/open_document.h"
#include "tools/terminal/json.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Document;

namespace {

struct DiffRequest {
  std::string left, right;
  bool json = false;
  bool show_secrets = false;
};

// A section (without an option) or an option that is on one side only, or an
// option with another value. A side that lacks it has no value.
struct Difference {
  std::string section;
  std::optional<std::string> option;
  std::optional<std::string> left, right;
};

using OptionMap = decltype(storage::dmconfig::SectionOptionMap::option_map);

const OptionMap& OptionsOf(const std::string& section, Document* model) {
  static const OptionMap kNone;
  return model->HasSection(section) ? model->Record(section).option_map : kNone;
}

std::optional<std::string> ValueIn(const OptionMap& options, const std::string& name) {
  const auto found = options.find(name);
  if (found == options.end()) return std::nullopt;
  return found->second.value;
}

class Comparison {
 public:
  Comparison(Document* left, Document* right) : left_(left), right_(right) {}

  std::vector<Difference> Compare();

 private:
  void CompareSection(const std::string& section);
  void CompareOption(const std::string& section, const std::string& option);

  Document* const left_;
  Document* const right_;
  std::vector<Difference> differences_;
};

std::vector<Difference> Comparison::Compare() {
  for (const std::string& name : left_->Sections()) CompareSection(name);
  for (const std::string& name : right_->Sections()) {
    if (!left_->HasSection(name)) CompareSection(name);
  }
  return std::move(differences_);
}

void Comparison::CompareSection(const std::string& section) {
  const auto side = [&section](Document* model) {
    return model->HasSection(section) ? std::optional<std::string>("") : std::nullopt;
  };
  const auto left = side(left_);
  const auto right = side(right_);
  if (left != right) differences_.push_back({section, {}, left, right});
  const OptionMap& left_options = OptionsOf(section, left_);
  for (const auto& [name, stored] : left_options) CompareOption(section, name);
  for (const auto& [name, stored] : OptionsOf(section, right_)) {
    if (left_options.count(name) == 0) CompareOption(section, name);
  }
}

void Comparison::CompareOption(const std::string& section, const std::string& option) {
  const auto left = ValueIn(OptionsOf(section, left_), option);
  const auto right = ValueIn(OptionsOf(section, right_), option);
  if (left != right) differences_.push_back({section, option, left, right});
}

void HidePasswords(std::vector<Difference>* differences) {
  for (Difference& one : *differences) {
    if (!one.option) continue;
    for (std::optional<std::string>* value : {&one.left, &one.right}) {
      if (*value) *value = RedactedValue(*one.option, **value);
    }
  }
}

// "- [Server] threads = 4" and "+ [Server] threads = 8".
std::string DifferencesText(const std::vector<Difference>& differences) {
  std::string text;
  for (const Difference& one : differences) {
    const auto add = [&](char sign, const std::optional<std::string>& value) {
      if (!value) return;
      text += sign + (" [" + EscapeForTerminal(one.section) + "]");
      if (one.option)
        text += ' ' + EscapeForTerminal(*one.option) + " = " + EscapeForTerminal(*value);
      text += '\n';
    };
    add('-', one.left);
    add('+', one.right);
  }
  return text;
}

std::string DifferencesJson(const DiffRequest& request,
                            const std::vector<Difference>& differences) {
  nlohmann::ordered_json document;
  document["schema"] = 1;
  AddText(&document, "left", request.left);
  AddText(&document, "right", request.right);
  document["differences"] = nlohmann::ordered_json::array();
  for (const Difference& one : differences) {
    nlohmann::ordered_json entry;
    AddText(&entry, "section", one.section);
    if (one.option) AddText(&entry, "option", *one.option);
    const auto add = [&](const char* key, const std::optional<std::string>& value) {
      if (!one.option) {
        entry[key] = value.has_value();
      } else if (value) {
        AddText(&entry, key, *value);
      } else {
        entry[key] = nullptr;
      }
    };
    add("left", one.left);
    add("right", one.right);
    document["differences"].push_back(std::move(entry));
  }
  return JsonText(document);
}

ExitStatus RunDiff(const DiffRequest& request) {
  if (request.left == "-" && request.right == "-") {
    throw ToolError(kExitUsage, "standard input cannot be both files",
                    "give the name of one of them");
  }
  Document left = OpenDocument(request.left);
  Document right = OpenDocument(request.right);
  std::vector<Difference> differences = Comparison(&left, &right).Compare();
  if (!request.show_secrets) HidePasswords(&differences);
  WriteStandardOutput(request.json ? DifferencesJson(request, differences)
                                   : DifferencesText(differences));
  return differences.empty() ? kExitDone : kExitNo;
}

}  // namespace

Declaration DeclareDiff() {
  const auto request = std::make_shared<DiffRequest>();
  return {{
              Argument("A", ValueKind::kFile, &request->left, "One file"),
              Argument("B", ValueKind::kFile, &request->right, "The other file"),
              Flag("--json", &request->json, "Print the differences as JSON"),
              ShowSecretsFlag(&request->show_secrets),
          },
          BindRequest(request, RunDiff)};
}

}  // namespace quarry::tool
