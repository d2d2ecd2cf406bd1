// How an option is stored in a section's record: shared by the model's setters
// and by the reader, which holds the record of the section that it reads. All
// functions throw std::bad_alloc and leave then what DMConfig's comments say.
#ifndef QUARRY_DMCONFIG_OPTION_STORE_H_
#define QUARRY_DMCONFIG_OPTION_STORE_H_

#include <string>
#include <string_view>

#include "dmconfig/config.h"

namespace quarry::storage::dmconfig {

// Returns the option of that name, added with empty texts when it is missing.
OptionValue& FindOrAddOption(SectionOptionMap* record, const std::string& option);

// Adds the option whole. Returns null, or the option of that name when there is
// one already, which is left as it is.
OptionValue* AddOption(SectionOptionMap* record, std::string&& option, std::string_view value,
                       std::string_view comment);

// Replaces value and comment together, or neither.
void StoreValueAndComment(OptionValue* stored, std::string_view value, std::string_view comment);

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_OPTION_STORE_H_
