#include "tools/check/client_checks.h"

#include "tools/check/program_rules.h"

namespace quarry::tool {

std::vector<settings::Finding> CheckForClient(const std::string& text) {
  const settings::OriginMap origins = settings::FindOrigins(text);
  const auto section = origins.find("lynx");
  if (section == origins.end()) return {};
  const auto option = section->second.options.find("ingest_mode");
  if (option == section->second.options.end()) return {};
  const settings::ScannedLine& line = option->second;
  const std::string_view value = line.option.value;
  if (value == "on" || value == "off") return {};
  return {settings::FindingAt(rules::kIngestMode, line, value, rules::kIngestMode.meaning,
                              "write \"on\" or \"off\", in just these letters")};
}

}  // namespace quarry::tool
