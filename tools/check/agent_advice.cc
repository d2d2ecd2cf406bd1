#include "tools/check/agent_advice.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>

#include "platform/local/sealed_password.h"
#include "settings/error.h"
#include "settings/exposed_folder.h"
#include "tools/check/ownership.h"
#include "tools/check/program_checks.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Document;
using settings::Quoted;

namespace {

const std::string& KeyFolder(Document* document) {
  return ValueOf(AgentSetting::kKeyDir, document);
}

// The path as a start forms it: truncated at the first NUL and at the buffer's end.
std::string KeyFile(Document* document) {
  constexpr std::size_t kMaxPathBytes = 4094;
  const std::string& folder = KeyFolder(document);
  return (folder.substr(0, folder.find('\0')) + "/auth.key").substr(0, kMaxPathBytes);
}

std::string CommandOn(const char* command, const std::string& folder) {
  // An agent's start adds "/auth.key" to an empty name, too.
  return std::string("quarry-config ") + command + ' ' +
         ShellQuotedFile(folder.empty() ? "/" : folder);
}

bool IsOnReadOnlyMount(const std::string& path) {
  struct statvfs file_system {};
  return statvfs(path.c_str(), &file_system) == 0 && (file_system.f_flag & ST_RDONLY) != 0;
}

std::string HintForWritableFolder(const settings::ExposedFolder& folder) {
  // A folder such as /tmp is meant for all.
  if ((folder.permissions & S_ISVTX) != 0) return "keep it in a folder of root or of this user";
  if (IsOnReadOnlyMount(folder.path)) return "have the folder mounted with mode 755";
  return "chmod go-w " + ShellQuotedFile(folder.path);
}

std::string OctalText(mode_t mode) {
  std::ostringstream text;
  text << std::oct << mode;
  return text.str();
}

using Decrypt = int(const char* key_file, const char* stored, char* out, std::size_t capacity);

int TryWith(Decrypt* decrypt, Document* document) {
  platform::SecretBytes out(platform::kLongestPassword + 1);
  if (out.data() == nullptr) return kDecryptNoCrypto;
  const std::string& stored = ValueOf(AgentSetting::kPassword, document);
  return decrypt(KeyFile(document).c_str(), stored.c_str(), out.text(), out.size());
}

// With our own code. Another platform library may use other result numbers; one is trusted only
// where our code returns the same.
int TryOwnPassword(Document* document) {
  return TryWith(
      [](const char* key_file, const char* stored, char* out, std::size_t capacity) -> int {
        return platform::OpenPassword(key_file, stored, out, capacity);
      },
      document);
}

Advice AdviceForNoKeyFile(Document* document) {
  const std::string file = KeyFile(document);
  const std::string& folder = KeyFolder(document);
  if (access(file.c_str(), F_OK) == 0 || (errno != ENOENT && errno != ENOTDIR)) {
    return {"key file " + Quoted(file) + " cannot be read",
            "start as the user that the key file and its folder belong to"};
  }
  std::string hint = "set " + FullName(AgentSetting::kKeyDir) + " to the folder that has it";
  if (!folder.empty()) {
    hint += ", or make a key: ";
    if (access(folder.c_str(), F_OK) != 0) {
      hint += "mkdir -m 700 " + ShellQuotedFile(folder) + " && ";
    }
    hint += CommandOn("keygen", folder);
  }
  return {"there is no key file " + Quoted(file), hint};
}

}  // namespace

bool Has(AgentSetting setting, Document* document) {
  const AgentSettingRow& row = RowOf(setting);
  return document->Has(row.section_name(), row.option_name());
}

const std::string& ValueOf(AgentSetting setting, Document* document) {
  const AgentSettingRow& row = RowOf(setting);
  return document->Find(row.section_name(), row.option_name())->value;
}

std::string FullName(AgentSetting setting) {
  const AgentSettingRow& row = RowOf(setting);
  return '[' + std::string(row.section_name()) + "] " + row.option_name();
}

Advice AdviceForAbsent(AgentSetting setting, Document* document) {
  const std::string section = RowOf(setting).section_name();
  const std::string option = RowOf(setting).option_name();
  return {"an agent start needs option " + Quoted(option) + " in section " + Quoted(section),
          HintForAbsent(section, option, document)};
}

int TryPassword(Document* document) { return TryWith(DecryptPasswdWithKey, document); }

DecryptResult TryPasswordForm(Document* document) {
  // A start reads the value up to the first NUL.
  return platform::ValidateSealedForm(ValueOf(AgentSetting::kPassword, document).c_str());
}

DecryptResult TryKey(Document* document) {
  return platform::SealingKey().Load(KeyFile(document).c_str());
}

std::optional<Advice> AdviceForExposedKey(const std::string& key_file, const std::string& command) {
  const auto folder = settings::FindExposedFolder(key_file);
  if (!folder) return std::nullopt;
  if (folder->owner) {
    return Advice{"folder " + Quoted(folder->path) + " belongs to " + UserText(*folder->owner) +
                      ", who could exchange the key",
                  "run it as that user: " + CommandAs(*folder->owner, command) +
                      "; or keep the key below folders of root or this user"};
  }
  return Advice{"others may write to the folder " + Quoted(folder->path) + " (mode " +
                    OctalText(folder->permissions) + ')',
                "they could exchange the key: " + HintForWritableFolder(*folder)};
}

std::optional<Advice> AdviceForKeyFolder(Document* document) {
  try {
    return AdviceForExposedKey(KeyFile(document), "quarry-config check --as agent FILE");
  } catch (const settings::Error&) {
    return std::nullopt;  // a finding about the key file tells it
  }
}

std::string OpenKeyHint(const std::string& key_file) {
  if (IsOnReadOnlyMount(key_file)) {
    return "its file system is read-only: have it mounted with mode 400 for the agent's user, or "
           "with mode 440 for root and a group of that user";
  }
  return "let only the agent's user own and read it: chown, and chmod 600 " +
         ShellQuotedFile(key_file) + "; then try again as that user";
}

Advice AdviceForPassword(int result, Document* document) {
  if (result == TryOwnPassword(document)) return AdviceForResult(result, document);
  return {
      "the platform library cannot decrypt the password (result " + std::to_string(result) + ")",
      "see its documentation; quarry-config --version names the file"};
}

Advice AdviceForResult(int result, Document* document) {
  // The text may name no key folder when only the password's form was checked.
  const auto file = [&] { return Quoted(KeyFile(document)); };
  const std::string seal = "seal the password again: quarry-config seal --into " +
                           (document->file() == "-" ? "FILE" : ShellQuotedFile(document->file()));
  switch (result) {
    case kDecryptNoKeyFile:
      return AdviceForNoKeyFile(document);
    case kDecryptKeyTooOpen:
      return {"key file " + file() + " is open to others", OpenKeyHint(KeyFile(document))};
    case kDecryptNotAKeyFile:
      return {file() + " is not a key file",
              "bring back the right one, or make a key in another folder: "
              "quarry-config keygen FOLDER"};
    case kDecryptNotSealed:
      return {"the password is not sealed in a known form", seal};
    case kDecryptOtherKey:
      return {"the password is sealed with another key than " + file(),
              seal + ' ' + ShellQuotedFile(KeyFolder(document))};
    case kDecryptDamaged:
      return {"the sealed password is damaged", seal};
    case kDecryptTooLong:
      return {"the password is longer than an agent can use", seal};
    default:
      return {"the password cannot be decrypted: no cryptography or memory",
              "try again; quarry-config --version names the library"};
  }
}

}  // namespace quarry::tool
