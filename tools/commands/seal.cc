// quarry-config seal

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/local/sealed_password.h"
#include "settings/regular_file.h"
#include "tools/check/agent_advice.h"
#include "tools/commands/command.h"
#include "tools/commands/edit_target.h"
#include "tools/commands/key_folder.h"
#include "tools/commands/open_document.h"
#include "tools/terminal/password_prompt.h"
#include "tools/terminal/redactor.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Document;
using settings::Quoted;
using settings::Setting;

namespace {

struct SealRequest {
  std::optional<std::string> folder;
  std::optional<std::string> file;  // to seal into
  EditTarget target;                // without its file
};

// The folder that the file names.
const std::string& KeyFolderIn(Document* document) {
  if (!Has(AgentSetting::kKeyDir, document)) {
    const std::string& file = document->file();
    throw ToolError(
        kExitNo, file + " does not say which key to seal with",
        "name the folder of the key: quarry-config seal --into " + ShellQuotedFile(file) + " DIR");
  }
  return ValueOf(AgentSetting::kKeyDir, document);
}

// A file that cannot be edited is found before the password is asked for.
std::string FolderFor(const SealRequest& request) {
  if (request.file) {
    Document document = OpenDocument(*request.file);
    return request.folder ? *request.folder : KeyFolderIn(&document);
  }
  if (request.folder) return *request.folder;
  throw ToolError(kExitUsage, "give DIR, or a file with --into", "see: quarry-config seal --help");
}

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

// Any password may be meant, so these are sealed all the same.
void WarnOfPassword(std::string_view password) {
  if (password.empty()) {
    WriteDiagnostics({Warning("the password is empty", "if that is not meant, seal it again")});
    return;
  }
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

std::string Sealed(const platform::SealingKey& key, std::string_view password) {
  std::string stored;
  if (platform::SealPassword(key, password, &stored) != kDecryptDone) throw std::bad_alloc();
  return stored;
}

// Whether the key opens `stored` to this password.
bool OpensTo(const std::string& stored, const platform::SealingKey& key,
             std::string_view password) {
  platform::SecretBytes opened(platform::kLongestPassword + 1);
  if (opened.data() == nullptr) throw std::bad_alloc();
  return platform::OpenPasswordWithKey(key, stored.c_str(), opened.text(), opened.size()) ==
             kDecryptDone &&
         opened.text() == password;
}

bool IsSameFolder(const std::string& one, const std::string& other) {
  struct stat left {
  }, right{};
  return one == other || (stat(one.c_str(), &left) == 0 && stat(other.c_str(), &right) == 0 &&
                          settings::IsSameFile(left, right));
}

std::string AbsolutePath(const std::string& folder) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(folder, error);
  if (error) throw settings::SystemError("find the folder " + folder, folder, error.value());
  return path;
}

Setting SettingOf(AgentSetting setting, const std::string& value) {
  return {RowOf(setting).section_name(), RowOf(setting).option_name(), value};
}

// What the text lacks for an agent to read this password with the key of this folder.
std::vector<Setting> MissingSettings(const SealRequest& request, const std::string& folder,
                                     const platform::SealingKey& key, std::string_view password,
                                     Document* document) {
  std::vector<Setting> settings;
  if (!Has(AgentSetting::kPassword, document) ||
      !OpensTo(ValueOf(AgentSetting::kPassword, document), key, password)) {
    settings.push_back(SettingOf(AgentSetting::kPassword, Sealed(key, password)));
  }
  if (Has(AgentSetting::kKeyDir, document) &&
      IsSameFolder(ValueOf(AgentSetting::kKeyDir, document), folder)) {
    return settings;
  }
  if (!request.folder) {
    throw settings::Error(settings::ErrorKind::kFailed, document->file(),
                          "another edit has changed the key folder of " + document->file(),
                          "try again");
  }
  // An agent may start in another folder than this program.
  settings.push_back(SettingOf(AgentSetting::kKeyDir, AbsolutePath(folder)));
  settings::RequireRoundTrip(settings.back());
  return settings;
}

ExitStatus SealInto(const SealRequest& request, const std::string& folder,
                    const platform::SealingKey& key, std::string_view password) {
  EditTarget target = request.target;
  target.file = *request.file;
  return MakeEdit(target,
                  [&](const std::string& text) {
                    Document document = OpenDocument(target.file, text);
                    return settings::WithSettings(
                        &document, MissingSettings(request, folder, key, password, &document));
                  })
      .status;
}

ExitStatus RunSeal(const SealRequest& request) {
  DisableCoreDumps();
  if (request.file == "-") {
    throw ToolError(kExitUsage, "standard input is the password, not the file",
                    "give the file's name");
  }
  const std::string folder = FolderFor(request);
  platform::SealingKey key;
  LoadKey(folder, &key);
  RequireSafeKeyFolder(folder, "seal", kExitNo);
  PasswordInput input;
  input.Read("to seal for " + KeyFileIn(folder));
  WarnOfPassword(input.password());
  if (request.file) return SealInto(request, folder, key, input.password());
  WriteStandardOutput(Sealed(key, input.password()) + '\n');
  return kExitDone;
}

}  // namespace

Declaration DeclareSeal() {
  const auto request = std::make_shared<SealRequest>();
  std::vector<Word> words = {
      OptionalArgument("DIR", ValueKind::kFolder, &request->folder,
                       "Folder with the key file auth.key; with --into the one that FILE names"),
      Option("--into", "FILE", ValueKind::kFile, &request->file,
             "Set the agent's password in this file, and the folder of its key"),
  };
  AddEditWords(&request->target, &words, "--into");
  return {std::move(words), BindRequest(request, RunSeal)};
}

}  // namespace quarry::tool
