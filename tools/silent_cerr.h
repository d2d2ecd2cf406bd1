#ifndef QUARRY_TOOLS_SILENT_CERR_H_
#define QUARRY_TOOLS_SILENT_CERR_H_

#include <iostream>

namespace quarry::tool {

// Keeps the library's own diagnostics off standard error: they quote the line
// as it is, while our findings make it visible first.
class SilentCerr {
 public:
  SilentCerr() : original_(std::cerr.rdbuf(nullptr)) {}
  ~SilentCerr() { std::cerr.rdbuf(original_); }
  SilentCerr(const SilentCerr&) = delete;
  SilentCerr& operator=(const SilentCerr&) = delete;

 private:
  std::streambuf* const original_;
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_SILENT_CERR_H_
