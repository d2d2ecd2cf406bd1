// Spelling suggestions for an unknown name.
#ifndef QUARRY_SETTINGS_SUGGESTIONS_H_
#define QUARRY_SETTINGS_SUGGESTIONS_H_

#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace quarry::settings {

// Whether `name` is spelled much like `wanted`. Letter case does not count.
bool IsSpelledLike(std::string_view wanted, std::string_view name);

// Returns at most three of `names` that are spelled much like `wanted`, the nearest first. Letter
// case does not count.
std::vector<std::string> SuggestNames(const std::string& wanted,
                                      const std::list<std::string>& names);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_SUGGESTIONS_H_
