// What an agent's start needs of a text, and what to do when it fails.
#ifndef QUARRY_TOOLS_CHECK_AGENT_ADVICE_H_
#define QUARRY_TOOLS_CHECK_AGENT_ADVICE_H_

#include <optional>
#include <string>

#include "config/agent_settings.h"
#include "platform/cr_runtime.h"
#include "settings/document.h"

namespace quarry::tool {

using ::storage::config::AgentSetting;
using ::storage::config::AgentSettingRow;
using ::storage::config::kAgentSettings;
using ::storage::config::RowOf;

bool Has(AgentSetting setting, settings::Document* document);

// The setting's value; the setting must be there.
const std::string& ValueOf(AgentSetting setting, settings::Document* document);

// "[SECTION] OPTION".
std::string FullName(AgentSetting setting);

// A problem in one sentence, and the remedy.
struct Advice {
  std::string message;
  std::string hint;
};

// For a required setting that the text lacks: where to add it, and a name in the text that may have
// been meant.
Advice AdviceForAbsent(AgentSetting setting, settings::Document* document);

// Decrypts the text's password as an agent's start does, and returns the result of
// DecryptPasswdWithKey. The settings must be there.
int TryPassword(settings::Document* document);

// Whether the form of the text's password is right; knows only that of our own code. Needs no key.
DecryptResult TryPasswordForm(settings::Document* document);

// Whether the text's key file can be used.
DecryptResult TryKey(settings::Document* document);

// About a folder in which another user could exchange the text's key file, if there is one; see
// settings/exposed_folder.h. Also nullopt when the key file's folder cannot be found.
std::optional<Advice> AdviceForKeyFolder(settings::Document* document);

// About such a folder on the way to `key_file`, for `command`. Throws settings::Error.
std::optional<Advice> AdviceForExposedKey(const std::string& key_file, const std::string& command);

// For the result of a failed TryPassword.
Advice AdviceForPassword(int result, settings::Document* document);

// For a failed DecryptResult of our own code, such as that of TryKey.
Advice AdviceForResult(int result, settings::Document* document);

// What to do about a key file that others can read.
std::string OpenKeyHint(const std::string& key_file);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_AGENT_ADVICE_H_
