// A setting, and which names and values a text can hold: those that a load reads back unchanged.
#ifndef QUARRY_SETTINGS_SETTING_H_
#define QUARRY_SETTINGS_SETTING_H_

#include <string>
#include <vector>

namespace quarry::settings {

struct Setting {
  std::string section;
  std::string option;
  std::string value;
};

// Each throws Error (kRefused), with the reason, for what would not read back unchanged from a text
// that contains it.
void RequireSectionName(const std::string& name);
void RequireOptionName(const std::string& name);
void RequireRoundTrip(const Setting& setting);

// The last setting of each option, in the order of the first ones.
std::vector<Setting> LastOfEach(const std::vector<Setting>& settings);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_SETTING_H_
