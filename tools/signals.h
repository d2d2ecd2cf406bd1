#ifndef QUARRY_TOOLS_SIGNALS_H_
#define QUARRY_TOOLS_SIGNALS_H_

#include <csignal>

namespace quarry::tool {

// Keeps the signals that end a program back for its life, so that what is
// done meanwhile is not left half done. A file that grows beyond the limit for
// files is an error of the write, not the end of the program.
class SignalsHeld {
 public:
  SignalsHeld();
  ~SignalsHeld();
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

  // The signals that were held back before, for a child.
  const sigset_t& before() const { return before_; }

 private:
  sigset_t before_;
  struct sigaction file_size_before_ {};
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_SIGNALS_H_
