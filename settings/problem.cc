#include "settings/problem.h"

namespace quarry::settings {

std::string Problem::Message() const {
  if (file.empty()) return text;
  std::string message = file;
  if (line != 0) message += ':' + std::to_string(line);
  if (column != 0) message += ':' + std::to_string(column);
  return message + ": " + text;
}

}  // namespace quarry::settings
