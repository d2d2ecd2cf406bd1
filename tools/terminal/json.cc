#include "tools/terminal/json.h"

#include <sodium.h>

#include "tools/terminal/errors.h"
#include "tools/terminal/terminal_text.h"
#include "tools/terminal/utf8.h"

namespace quarry::tool {

namespace {

std::string Base64(const std::string& bytes) {
  constexpr int kVariant = sodium_base64_VARIANT_ORIGINAL;
  std::string text(sodium_base64_encoded_len(bytes.size(), kVariant), '\0');
  sodium_bin2base64(text.data(), text.size(), reinterpret_cast<const unsigned char*>(bytes.data()),
                    bytes.size(), kVariant);
  text.pop_back();  // the NUL that the length counts
  return text;
}

}  // namespace

void AddText(nlohmann::ordered_json* object, const std::string& key, const std::string& text) {
  (*object)[key] = text;
  if (!IsUtf8(text)) (*object)[key + "_base64"] = Base64(text);
}

nlohmann::ordered_json FailedFileJson(const std::string& file, const settings::Error& error) {
  const Diagnostic first = DiagnosticsOf(error).front();
  nlohmann::ordered_json entry;
  AddText(&entry, "file", file);
  entry["error"] =
      EscapeForTerminal(first.place.empty() ? first.message : first.place + ": " + first.message);
  return entry;
}

std::string JsonText(const nlohmann::ordered_json& document) {
  constexpr auto kReplace = nlohmann::ordered_json::error_handler_t::replace;
  return document.dump(-1, ' ', false, kReplace) + '\n';
}

}  // namespace quarry::tool
