#include "tools/check/program_checks.h"

#include <algorithm>

#include "settings/error.h"
#include "settings/suggestions.h"
#include "tools/check/password_line.h"
#include "tools/check/program_rules.h"
#include "tools/terminal/redactor.h"

namespace quarry::tool {

using settings::Finding;
using settings::FindingAt;
using settings::OriginMap;
using settings::Quoted;

namespace {

// The name for a hint. It ends in a secret when "password = x" lost its "=".
std::string ShownName(const std::string& name) {
  const std::size_t secret = FindSecret(name);
  return Quoted(secret < name.size() ? name.substr(0, secret) + kMask : name);
}

}  // namespace

std::string HintForAbsent(const std::string& section, const std::string& option,
                          settings::Document* document) {
  std::string hint = "add \"" + option + " = ...\" to section [" + section + "]";
  const auto near = settings::SuggestNames(option, document->Options(section));
  const auto near_sections = settings::SuggestNames(section, document->Sections());
  if (!near.empty()) {
    hint += ", or correct " + ShownName(near.front()) + " there";
  } else if (!document->HasSection(section) && !near_sections.empty()) {
    hint += ", or correct section " + ShownName(near_sections.front());
  }
  return hint;
}

Finding FindingForAbsent(const settings::Rule& rule, const OriginMap& origins,
                         const std::string& section, const std::string& message,
                         const std::string& hint) {
  const auto origin = origins.find(section);
  if (origin != origins.end()) {
    const settings::ScannedLine& header = origin->second.header;
    return FindingAt(rule, header, header.header.name, message, hint);
  }
  return settings::FindingWithoutLine(rule, message, hint);
}

std::vector<Finding> FindUnknownOptions(const OriginMap& origins, const std::string& section,
                                        const std::list<std::string>& known,
                                        const std::string& message) {
  const auto origin = origins.find(section);
  if (origin == origins.end()) return {};
  std::vector<Finding> findings;
  for (const auto& [name, line] : origin->second.options) {
    const auto is_same = [&name = name](const auto& other) {
      return settings::SameName(name, other);
    };
    if (std::any_of(known.begin(), known.end(), is_same)) continue;
    const auto near = settings::SuggestNames(name, known);
    findings.push_back(FindingAt(rules::kUnknownSetting, line, line.option.name, message,
                                 near.empty() ? "keep it in a section of its own"
                                              : "did you mean " + Quoted(near.front()) + "?"));
  }
  return findings;
}

}  // namespace quarry::tool
