// quarry-config seal

#include <cerrno>
#include <new>
#include <string_view>

#include "platform/local/sealed_password.h"
#include "tools/check/agent_advice.h"
#include "tools/commands/command.h"
#include "tools/commands/key_folder.h"
#include "tools/terminal/password_prompt.h"
#include "tools/terminal/redactor.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Quoted;

namespace {

struct SealRequest {
  std::string folder;
};

void LoadKey(const std::string& folder, platform::SealingKey* key) {
  RequireName(folder);
  const std::string file = KeyFileIn(folder);
  errno = 0;
  switch (key->Load(file.c_str())) {
    case kDecryptDone:
      return;
    case kDecryptNoKeyFile:
      throw settings::SystemError(
          "read the key file " + file, file, errno,
          errno == ENOENT ? "make one: quarry-config keygen " + ShellQuotedFile(folder) : "");
    case kDecryptKeyTooOpen:
      throw ToolError(kExitNo, "key file " + Quoted(file) + " is open to others",
                      OpenKeyHint(file));
    case kDecryptNotAKeyFile:
      throw ToolError(kExitNo, Quoted(file) + " is not a key file",
                      "make one in another folder: quarry-config keygen FOLDER");
    default:
      throw std::bad_alloc();
  }
}

// Any byte may be meant, so these are sealed all the same.
void WarnOfEnds(std::string_view password) {
  if (password.empty()) return;
  constexpr std::string_view kBlanks = " \t";
  const auto is_blank = [&](char byte) { return kBlanks.find(byte) != std::string_view::npos; };
  if (password.back() == '\r') {
    WriteDiagnostics(
        {Warning("the password ends in a carriage return, which is sealed as a part of it",
                 "if it is only the end of a line, remove it: tr -d '\\r'")});
  }
  if (is_blank(password.front()) || is_blank(password.back())) {
    WriteDiagnostics(
        {Warning("the password begins or ends with a blank, which is sealed as a part of it",
                 "if that is not meant, seal it again without")});
  }
}

ExitStatus RunSeal(const SealRequest& request) {
  DisableCoreDumps();
  platform::SealingKey key;
  LoadKey(request.folder, &key);
  RequireSafeKeyFolder(request.folder, "seal", kExitNo);
  PasswordInput input;
  input.Read("to seal for " + KeyFileIn(request.folder));
  WarnOfEnds(input.password());
  std::string stored;
  if (platform::SealPassword(key, input.password(), &stored) != kDecryptDone) {
    throw std::bad_alloc();
  }
  WriteStandardOutput(stored + '\n');
  return kExitDone;
}

}  // namespace

Declaration DeclareSeal() {
  const auto request = std::make_shared<SealRequest>();
  return {{
              Argument("DIR", ValueKind::kFolder, &request->folder,
                       "Folder with the key file auth.key"),
          },
          BindRequest(request, RunSeal)};
}

}  // namespace quarry::tool
