// Stores options in a section's record, for the model's setters and for the reader, which holds the
// record of the section that it reads. All functions may throw std::bad_alloc and then leave the
// record in the state that the comments of DMConfig describe. Not installed.
#ifndef QUARRY_DMCONFIG_OPTION_STORE_H_
#define QUARRY_DMCONFIG_OPTION_STORE_H_

#include <string>
#include <string_view>

#include "dmconfig/config.h"

namespace quarry::storage::dmconfig {

// Returns the option of that name, adding it with empty texts when it is missing.
OptionValue& FindOrAddOption(SectionOptionMap* record, const std::string& option);

// Adds an option with its value and comment and returns null. When an option of that name exists
// already, returns it unchanged.
OptionValue* AddOption(SectionOptionMap* record, std::string&& option, std::string_view value,
                       std::string_view comment);

// Replaces value and comment, or neither when it throws.
void StoreValueAndComment(OptionValue* stored, std::string_view value, std::string_view comment);

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_OPTION_STORE_H_
