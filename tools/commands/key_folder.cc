#include "tools/commands/key_folder.h"

namespace quarry::tool {

std::string KeyFileIn(const std::string& folder) {
  return folder + (folder.empty() || folder.back() != '/' ? "/" : "") + "auth.key";
}

}  // namespace quarry::tool
