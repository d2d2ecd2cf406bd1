// How an option is stored in a section's record: shared by the model's setters
// and by the reader, which holds the record of the section that it reads. Both
// functions throw std::bad_alloc and leave then what DMConfig's comments say.
#ifndef QUARRY_DMCONFIG_OPTION_STORE_H_
#define QUARRY_DMCONFIG_OPTION_STORE_H_

#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "dmconfig/config.h"

namespace quarry::storage::dmconfig {

// Returns the option of that name, added with empty texts when it is missing.
// The name may be given away.
template <typename Name>
OptionValue& FindOrAddOption(SectionOptionMap* record, Name&& option) {
  auto& options = record->option_map;
  const StringCaseCmp before;

  // Saved texts hold their options in order, so most belong at the end.
  auto at = options.end();
  if (!options.empty() && !before(std::prev(at)->first, option)) {
    at = options.lower_bound(option);
  }
  return options.try_emplace(at, std::forward<Name>(option))->second;
}

// Replaces value and comment together, or neither.
void StoreValueAndComment(OptionValue* stored, std::string_view value,
                          std::string_view comment);

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_OPTION_STORE_H_
