#ifndef QUARRY_TOOLS_TERMINAL_SIGNAL_BLOCK_H_
#define QUARRY_TOOLS_TERMINAL_SIGNAL_BLOCK_H_

#include <csignal>

namespace quarry::tool {

// Blocks the signals that end the calling thread's process for the object's lifetime, so that no
// operation is left half done. Exceeding the limit for the size of files (SIGXFSZ) is an error of
// the write, not the end of the process.
class ScopedSignalBlock {
 public:
  ScopedSignalBlock();
  ~ScopedSignalBlock();
  ScopedSignalBlock(const ScopedSignalBlock&) = delete;
  ScopedSignalBlock& operator=(const ScopedSignalBlock&) = delete;

  // The signals that were blocked before, for a child process.
  const sigset_t& before() const { return before_; }

 private:
  sigset_t before_;
  struct sigaction file_size_before_ {};
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_SIGNAL_BLOCK_H_
