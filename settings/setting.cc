#include "settings/setting.h"

#include <cstddef>
#include <map>
#include <string_view>

#include "dmconfig/line.h"
#include "dmconfig/string_case_cmp.h"
#include "settings/error.h"

namespace quarry::settings {

using storage::dmconfig::KindOf;
using storage::dmconfig::LineKind;
using storage::dmconfig::StringCaseCmp;
using storage::dmconfig::Trimmed;
using storage::dmconfig::WithoutLeadingBlanks;

namespace {

[[noreturn]] void Refuse(const std::string& what, const std::string& reason) {
  throw Error(ErrorKind::kRefused, "", what + " would not be read back: " + reason);
}

void RequireNoByte(const std::string& what, std::string_view text, char byte,
                   const std::string& reason) {
  if (text.find(byte) != std::string_view::npos) Refuse(what, reason);
}

void RequireOneLine(const std::string& what, std::string_view text) {
  RequireNoByte(what, text, '\n', "it holds a line feed, where a line ends");
  RequireNoByte(what, text, '\0', "it holds a NUL byte");
}

void RequireValue(std::string_view value) {
  const std::string what = "the value";  // it may be secret
  RequireOneLine(what, value);
  if (Trimmed(value).size() != value.size()) {
    Refuse(what, "blanks at its ends do not count");
  }
}

}  // namespace

void RequireSectionName(const std::string& name) {
  const std::string what = "section name " + Quoted(name);
  if (name.empty()) Refuse(what, "it is empty");
  RequireOneLine(what, name);
  RequireNoByte(what, name, ']', "it holds a \"]\", where a name ends");
}

void RequireOptionName(const std::string& name) {
  const std::string what = "option name " + Quoted(name);
  if (name.empty()) Refuse(what, "it is empty");
  RequireOneLine(what, name);
  RequireNoByte(what, name, '=', "it holds a \"=\", where a name ends");
  if (WithoutLeadingBlanks(name).size() != name.size() || Trimmed(name).size() != name.size()) {
    Refuse(what, "blanks at its ends do not count");
  }
  switch (KindOf(name)) {
    case LineKind::kComment:
      Refuse(what, "its line would be a comment");
    case LineKind::kHeader:
      Refuse(what, "its line would be a section header");
    default:
      return;
  }
}

void RequireRoundTrip(const Setting& setting) {
  RequireSectionName(setting.section);
  RequireOptionName(setting.option);
  RequireValue(setting.value);
}

std::vector<Setting> LastOfEach(const std::vector<Setting>& settings) {
  std::vector<Setting> last;
  std::map<std::string, std::map<std::string, std::size_t, StringCaseCmp>, StringCaseCmp> places;
  for (const Setting& setting : settings) {
    const auto [place, is_new] = places[setting.section].emplace(setting.option, last.size());
    if (is_new) {
      last.push_back(setting);
    } else {
      last[place->second].value = setting.value;
    }
  }
  return last;
}

}  // namespace quarry::settings
