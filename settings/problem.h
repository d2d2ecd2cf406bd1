// What is wrong with a file, a text or a value in it.
#ifndef QUARRY_SETTINGS_PROBLEM_H_
#define QUARRY_SETTINGS_PROBLEM_H_

#include <cstddef>
#include <string>

#include "../platform/export.h"

namespace quarry::settings {

// An error or a warning, with its place and its remedy. No problem quotes a value or a line, which
// may hold secrets; names are quoted.
struct QUARRY_EXPORT Problem {
  // "FILE:LINE:COLUMN: TEXT", or "FILE: TEXT" when it is not about a line; TEXT alone when it names
  // the file itself. Bytes of names are as they are in the file.
  std::string Message() const;

  std::string file;         // the name that the caller gave; empty when the text has it
  std::size_t line = 0;     // from 1; 0 when it is not about a line
  std::size_t column = 0;   // in bytes, from 1; 0 when it is not about a part of the line
  std::size_t length = 0;   // bytes of that part
  std::string rule;         // its stable name; empty for a failure of the system
  std::string text;         // one sentence; for a failure of the system, the system's own
  std::string hint;         // the remedy; may be empty
  bool is_warning = false;  // valid, but probably not meant
};

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_PROBLEM_H_
