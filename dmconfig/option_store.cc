#include "dmconfig/option_store.h"

#include <iterator>
#include <tuple>
#include <utility>

namespace quarry::storage::dmconfig {

OptionValue& FindOrAddOption(SectionOptionMap* record, const std::string& option) {
  return record->option_map.try_emplace(option).first->second;
}

OptionValue* AddOption(SectionOptionMap* record, std::string&& option, std::string_view value,
                       std::string_view comment) {
  auto& options = record->option_map;
  auto name = std::forward_as_tuple(std::move(option));
  const auto texts = std::forward_as_tuple(value, comment);
  // A saved text has its options in order, so most of them are appended.
  if (options.empty() || StringCaseCmp()(std::prev(options.end())->first, std::get<0>(name))) {
    options.emplace_hint(options.end(), std::piecewise_construct, std::move(name), texts);
    return nullptr;
  }
  // One search of the tree, at the cost of a wasted node when the option exists already.
  const auto [at, is_new] = options.emplace(std::piecewise_construct, std::move(name), texts);
  return is_new ? nullptr : &at->second;
}

void StoreValueAndComment(OptionValue* stored, std::string_view value, std::string_view comment) {
  OptionValue fresh(value, comment);
  *stored = std::move(fresh);
}

}  // namespace quarry::storage::dmconfig
