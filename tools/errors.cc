#include "tools/errors.h"

#include <cstdio>
#include <string_view>
#include <system_error>

namespace quarry::tool {

namespace {

constexpr std::string_view kProgram = "quarry-config: ";

}  // namespace

std::string ToolError::message() const {
  return report_.substr(kProgram.size(), report_.find('\n') - kProgram.size());
}

std::string ErrorReport(const std::string& message, const std::string& hint) {
  std::string report = std::string(kProgram) + message + '\n';
  if (!hint.empty()) report += "  hint: " + hint + '\n';
  return report;
}

ToolError SystemError(const std::string& verb, const std::string& what, int error_number,
                      const std::string& hint) {
  return {kExitFailed, ErrorReport("cannot " + verb + ' ' + what + ": " +
                                       std::generic_category().message(error_number),
                                   hint)};
}

void WriteStandardError(const std::string& text) {
  (void)std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace quarry::tool
