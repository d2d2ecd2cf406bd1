// Reads a password from standard input: at a terminal asked for twice, without echo.
#ifndef QUARRY_TOOLS_TERMINAL_PASSWORD_PROMPT_H_
#define QUARRY_TOOLS_TERMINAL_PASSWORD_PROMPT_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/local/secret_bytes.h"

namespace quarry::tool {

class PasswordInput {
 public:
  // Throws std::bad_alloc.
  PasswordInput();

  // Reads all of standard input, or, at a terminal, one line, twice, after a prompt that names
  // `purpose`. Throws ToolError for what cannot be sealed, and settings::Error when reading fails.
  void Read(const std::string& purpose);

  // Without the line feed at its end.
  std::string_view password() const;

 private:
  void ReadBytes(bool line_only);
  void ReadTwice(const std::string& purpose);
  void RequireSealable() const;

  platform::SecretBytes bytes_;
  std::size_t size_ = 0;
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_PASSWORD_PROMPT_H_
