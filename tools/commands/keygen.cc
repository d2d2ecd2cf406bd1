// quarry-config keygen

#include <sys/stat.h>

#include <cerrno>
#include <new>

#include "platform/local/key_file.h"
#include "tools/commands/command.h"
#include "tools/commands/edit_target.h"
#include "tools/commands/key_folder.h"
#include "tools/terminal/redactor.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

namespace {

struct KeygenRequest {
  std::string folder;
};

void RequireFolder(const std::string& folder) {
  RequireName(folder);
  struct stat status {};
  if (stat(folder.c_str(), &status) != 0) {
    throw settings::SystemError(
        "open " + folder, folder, errno,
        errno == ENOENT ? "make it: mkdir -m 700 " + ShellQuotedFile(folder) : "");
  }
}

ExitStatus RunKeygen(const KeygenRequest& request) {
  DisableCoreDumps();
  RequireFolder(request.folder);
  RequireSafeKeyFolder(request.folder, "keygen", kExitFailed);
  // Before the file, which would be left behind where the system has no random bytes.
  platform::SealingKey key;
  platform::SecretBytes text(platform::kKeyFileBytes + 1);
  if (text.data() == nullptr || key.Randomise() != kDecryptDone) throw std::bad_alloc();
  EncodeKey(key, &text);
  const std::string name = KeyFileIn(request.folder);
  settings::FileReplacement::Options options;
  options.new_mode = settings::kPrivateMode;
  settings::FileReplacement file = OpenForEdit(name, std::move(options));
  if (file.exists()) {
    throw ToolError(kExitFailed, "there is a key already: " + name,
                    "passwords may be sealed with it; make the new one in another folder");
  }
  file.Replace({text.text(), platform::kKeyFileBytes});
  WriteDiagnostics({Message("the key is in " + name + "; only its owner can read it")});
  return kExitDone;
}

}  // namespace

Declaration DeclareKeygen() {
  const auto request = std::make_shared<KeygenRequest>();
  return {
      {
          Argument("DIR", ValueKind::kFolder, &request->folder, "Folder for the key file auth.key"),
      },
      BindRequest(request, RunKeygen)};
}

}  // namespace quarry::tool
