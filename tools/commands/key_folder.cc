#include "tools/commands/key_folder.h"

#include "tools/check/agent_advice.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

std::string KeyFileIn(const std::string& folder) {
  return folder + (folder.empty() || folder.back() != '/' ? "/" : "") + "auth.key";
}

void RequireSafeKeyFolder(const std::string& folder, const std::string& command,
                          ExitStatus status) {
  const auto advice = AdviceForExposedKey(
      KeyFileIn(folder), "quarry-config " + command + ' ' + ShellQuotedFile(folder));
  if (advice) throw ToolError(status, advice->message, advice->hint);
}

}  // namespace quarry::tool
