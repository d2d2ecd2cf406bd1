#ifndef QUARRY_TOOLS_CHECK_PERCENT_ENCODING_H_
#define QUARRY_TOOLS_CHECK_PERCENT_ENCODING_H_

#include <string>
#include <string_view>

namespace quarry::tool {

// The text with every byte that `kept` is false for as "%" and two hexadecimal digits.
std::string PercentEncoded(std::string_view text, bool (*kept)(char));

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_PERCENT_ENCODING_H_
