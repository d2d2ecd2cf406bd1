// How the operations of settings/ fail: all of them throw Error, and std::bad_alloc.
#ifndef QUARRY_SETTINGS_ERROR_H_
#define QUARRY_SETTINGS_ERROR_H_

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace quarry::settings {

enum class ErrorKind {
  kRefused,      // a name or a value that would not be read back as it was given
  kInvalidText,  // a line breaks the grammar
  kNotFound,     // there is no such file
  kOpenFile,     // an open file of a process, such as /dev/stdout, which cannot be replaced
  kFailed,       // the system refused, or another program interfered
};

// A failure. Its strings are not escaped: a name in them may hold any byte.
struct Error : std::exception {
  Error(ErrorKind error_kind, std::string error_file, std::string error_message,
        std::string error_hint = "", std::size_t error_line = 0);

  const char* what() const noexcept override { return message.c_str(); }

  ErrorKind kind;
  std::string file;      // the name that the caller gave; may be empty
  std::size_t line;      // from 1; 0 when it is not about a line
  std::string message;   // one sentence, which names the file
  std::string hint;      // the remedy; may be empty
  int error_number = 0;  // errno of a failed system call
};

// A failed system call: "cannot ACTION: " and the system's text for `error_number`.
Error SystemError(const std::string& action, const std::string& file, int error_number,
                  const std::string& hint = "");

// A remedy when a call for `feature` failed with `error_number` because the file system lacks it;
// else nothing.
std::string HintForLackOf(const std::string& feature, int error_number);

// A name for a message: in double quotes, cut when it is long.
std::string Quoted(std::string_view name);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_ERROR_H_
