#include "dmconfig/option_store.h"

#include <utility>

namespace quarry::storage::dmconfig {

void StoreValueAndComment(OptionValue* stored, std::string_view value,
                          std::string_view comment) {
  OptionValue fresh{std::string(value), std::string(comment)};
  *stored = std::move(fresh);
}

}  // namespace quarry::storage::dmconfig
