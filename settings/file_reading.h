// Reading whole files.
#ifndef QUARRY_SETTINGS_FILE_READING_H_
#define QUARRY_SETTINGS_FILE_READING_H_

#include <string>

#include "platform/local/file_descriptor.h"

namespace quarry::settings {

// Returns the whole content of the file; pipes are allowed. Throws Error.
std::string ReadFile(const std::string& file);

// Opens the file for reading. Throws Error.
void OpenInput(const std::string& file, platform::FileDescriptor* input);

// Returns all that is left to read of an open file. Throws Error; `name` is that of the file for
// its message.
std::string ReadAll(int descriptor, const std::string& name);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_FILE_READING_H_
