#include "tools/commands/many_files.h"

#include <algorithm>

#include "tools/terminal/errors.h"

namespace quarry::tool {

void RequireNames(const std::vector<std::string>& names) {
  if (std::find(names.begin(), names.end(), "") == names.end()) return;
  throw ToolError(kExitUsage, "the name of a section or option is empty",
                  "is a variable of the command line not set?");
}

void RequireOneStandardInput(const std::vector<std::string>& files) {
  if (std::count(files.begin(), files.end(), "-") < 2) return;
  throw ToolError(kExitUsage, "standard input cannot be two files", "give the name of one of them");
}

std::size_t ForEachFile(
    const std::vector<std::string>& files, Progress* progress,
    const std::function<void(const std::string& file)>& handle,
    const std::function<void(const std::string& file, const settings::Error& error)>& add_failure) {
  std::size_t failed = 0;
  for (const std::string& file : files) {
    try {
      handle(file);
    } catch (const settings::Error& error) {
      progress->Clear();
      WriteDiagnostics(DiagnosticsOf(error));
      add_failure(file, error);
      ++failed;
    }
    progress->Step();
  }
  progress->Clear();
  return failed;
}

}  // namespace quarry::tool
