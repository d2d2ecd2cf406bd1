#include "tools/agent_settings.h"

#include <unistd.h>

#include <cerrno>
#include <list>

#include "platform/config_names.h"
#include "platform/cr_runtime.h"
#include "platform/local/sealed_password.h"
#include "tools/display.h"
#include "tools/nearest.h"

namespace quarry::tool {

namespace names = ::storage::config;

namespace {

std::string SettingValue(const char* accessor, ModelFile* model) {
  const AgentSetting& setting = AgentSettingOf(accessor);
  return model->GetValue(setting.section, setting.option);
}

std::string KeyFolder(ModelFile* model) { return SettingValue("ssl_key_dir", model); }

// As a start forms it: up to a NUL, and cut.
std::string KeyFile(ModelFile* model) {
  constexpr std::size_t kLongestPath = 4094;
  const std::string folder = KeyFolder(model);
  return (folder.substr(0, folder.find('\0')) + "/auth.key").substr(0, kLongestPath);
}

std::string CommandOn(const char* command, const std::string& folder) {
  return std::string("quarry-config ") + command + ' ' + ShellQuotedFile(folder);
}

std::list<std::string> OptionsOf(const std::string& section, ModelFile* model) {
  return model->HasSection(section) ? model->Options(section) : std::list<std::string>();
}

}  // namespace

const std::vector<AgentSetting>& AgentSettings() {
  static const std::vector<AgentSetting> settings = [] {
    struct Names {
      const char* accessor;
      std::size_t section, entry;
    };
    const Names all[] = {
        {"cr_login", names::kSectionCr, names::kEntryLogin},
        {"cr_password", names::kSectionCr, names::kEntryPassword},
        {"ssl_key_dir", names::kSectionSsl, names::kEntryKeyDir},
        {"ledger_url", names::kSectionLedger, names::kEntryUrl},
        {"metabase_url", names::kSectionMetabase, names::kEntryUrl},
        {"ctrl_address", names::kSectionControl, names::kEntryAddress},
        {"numeric_option", names::kSectionAgent, names::kEntryNumericOption},
    };
    std::vector<AgentSetting> filled;
    for (const Names& one : all) {
      filled.push_back({one.accessor, names::SectionName(one.section), names::EntryName(one.entry),
                        one.entry != names::kEntryNumericOption});
    }
    return filled;
  }();
  return settings;
}

const AgentSetting& AgentSettingOf(const std::string& accessor) {
  for (const AgentSetting& setting : AgentSettings()) {
    if (setting.accessor == accessor) return setting;
  }
  return AgentSettings().front();  // no caller asks for another name
}

Advice AbsentSettingAdvice(const AgentSetting& setting, ModelFile* model) {
  std::string hint = "add \"" + setting.option + " = ...\" to section [" + setting.section + "]";
  const auto near = NearestNames(setting.option, OptionsOf(setting.section, model));
  const auto near_sections = NearestNames(setting.section, model->Sections());
  if (!near.empty()) {
    hint += "; " + Quoted(near.front()) + " there looks like it";
  } else if (!model->HasSection(setting.section) && !near_sections.empty()) {
    hint += "; section " + Quoted(near_sections.front()) + " looks like it";
  }
  return {"an agent start needs option " + Quoted(setting.option) + " in section " +
              Quoted(setting.section),
          hint};
}

namespace {

using Decrypt = int(const char* key_file, const char* stored, char* out, std::size_t capacity);

int TryWith(Decrypt* decrypt, ModelFile* model) {
  platform::SecretBytes out(platform::kLongestPassword + 1);
  if (out.data() == nullptr) return kDecryptNoCrypto;
  const std::string stored = SettingValue("cr_password", model);
  return decrypt(KeyFile(model).c_str(), stored.c_str(), out.text(), out.size());
}

// With our own code. Only when the platform library gives the same result do
// its numbers mean what ours do.
int TryOwnPassword(ModelFile* model) {
  return TryWith(
      [](const char* key_file, const char* stored, char* out, std::size_t capacity) -> int {
        return platform::OpenPassword(key_file, stored, out, capacity);
      },
      model);
}

Advice NoKeyFileAdvice(ModelFile* model) {
  const std::string file = KeyFile(model);
  const std::string folder = KeyFolder(model);
  const AgentSetting& key_dir = AgentSettingOf("ssl_key_dir");
  const std::string setting = "[" + key_dir.section + "] " + key_dir.option;
  if (access(file.c_str(), F_OK) == 0 || (errno != ENOENT && errno != ENOTDIR)) {
    return {"key file " + Quoted(file) + " cannot be read",
            "start as the user that the key file and its folder belong to"};
  }
  std::string hint = "set " + setting + " to the folder that has it";
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

int TryPassword(ModelFile* model) { return TryWith(DecryptPasswdWithKey, model); }

DecryptResult TryKey(ModelFile* model) {
  return platform::SealingKey().Load(KeyFile(model).c_str());
}

std::string OpenKeyHint(const std::string& key_file) {
  return "let only the agent's user own and read it: chown, and chmod 600 " +
         ShellQuotedFile(key_file) + "; then try again as that user";
}

Advice PasswordAdvice(int result, ModelFile* model) {
  if (result == TryOwnPassword(model)) return AdviceOn(result, model);
  return {
      "the platform library cannot decrypt the password (result " + std::to_string(result) + ")",
      "see its documentation; quarry-config --version names the file"};
}

Advice AdviceOn(int result, ModelFile* model) {
  const std::string file = Quoted(KeyFile(model));
  const std::string seal =
      "seal the password and set it again: " + CommandOn("seal", KeyFolder(model));
  switch (result) {
    case kDecryptNoKeyFile:
      return NoKeyFileAdvice(model);
    case kDecryptKeyTooOpen:
      return {"key file " + file + " is open to others", OpenKeyHint(KeyFile(model))};
    case kDecryptNotAKeyFile:
      return {file + " is not a key file",
              "bring back the right one, or make a key in another folder: "
              "quarry-config keygen FOLDER"};
    case kDecryptNotSealed:
      return {"the password is not sealed in a known form", seal};
    case kDecryptOtherKey:
      return {"the password is sealed with another key than " + file, seal};
    case kDecryptDamaged:
      return {"the sealed password is damaged", seal};
    case kDecryptTooLong:
      return {"the password is longer than an agent can take", seal};
    default:
      return {"the password cannot be decrypted: no cryptography or memory",
              "try again; quarry-config --version names the library"};
  }
}

}  // namespace quarry::tool
