#include "tools/check_client.h"

#include "tools/scan.h"

namespace quarry::tool {

std::vector<Finding> CheckClient(const std::string& text) {
  const OriginMap origins = FindOrigins(text);
  const auto section = origins.find("lynx");
  if (section == origins.end()) return {};
  const auto option = section->second.options.find("ingest_mode");
  if (option == section->second.options.end()) return {};
  const ScannedLine& line = option->second;
  const std::string_view value = line.option.value;
  if (value == "on" || value == "off") return {};
  return {FindingAt(rules::kIngestMode, line, value, rules::kIngestMode.meaning,
                    "write \"on\" or \"off\", in just these letters")};
}

}  // namespace quarry::tool
