// Texts in UTF-16, which nothing here can read.
#ifndef QUARRY_SETTINGS_WIDE_ENCODING_H_
#define QUARRY_SETTINGS_WIDE_ENCODING_H_

#include <string_view>

namespace quarry::settings {

// Returns the name, as iconv(1) has it, of the encoding that a text in UTF-16 seems to have: by its
// byte-order mark, or by the NUL in every character of its first line. Null for other texts.
const char* WideEncodingOf(std::string_view text);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_WIDE_ENCODING_H_
