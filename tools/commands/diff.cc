// quarry-config diff

#include <optional>

#include "settings/differences.h"
#include "tools/check/plain_password.h"
#include "tools/commands/command.h"
#include "tools/commands/open_document.h"
#include "tools/terminal/json.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Difference;
using settings::Document;

namespace {

struct DiffRequest {
  std::string left, right;
  bool json = false;
  bool show_secrets = false;
};

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
  std::vector<Difference> differences = settings::FindDifferences(&left, &right);
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
