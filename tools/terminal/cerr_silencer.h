#ifndef QUARRY_TOOLS_TERMINAL_CERR_SILENCER_H_
#define QUARRY_TOOLS_TERMINAL_CERR_SILENCER_H_

#include <iostream>

namespace quarry::tool {

// Keeps the library's own diagnostics off standard error for the object's lifetime: they quote a
// line as it is, while our messages escape it.
class ScopedCerrSilencer {
 public:
  ScopedCerrSilencer() : original_(std::cerr.rdbuf(nullptr)) {}
  ~ScopedCerrSilencer() { std::cerr.rdbuf(original_); }
  ScopedCerrSilencer(const ScopedCerrSilencer&) = delete;
  ScopedCerrSilencer& operator=(const ScopedCerrSilencer&) = delete;

 private:
  std::streambuf* const original_;
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_CERR_SILENCER_H_
