#include "dmconfig/option_store.h"

#include <iterator>
#include <utility>

namespace quarry::storage::dmconfig {

OptionValue& FindOrAddOption(SectionOptionMap* record,
                             const std::string& option) {
  auto& options = record->option_map;
  const StringCaseCmp before;

  // Saved texts hold their options in order, so most belong at the end.
  auto at = options.end();
  if (!options.empty() && !before(std::prev(at)->first, option)) {
    at = options.lower_bound(option);
  }
  return options.try_emplace(at, option)->second;
}

void StoreValueAndComment(OptionValue* stored, std::string_view value,
                          std::string_view comment) {
  OptionValue fresh{std::string(value), std::string(comment)};
  *stored = std::move(fresh);
}

}  // namespace quarry::storage::dmconfig
