#include "tools/terminal/signal_block.h"

#include <initializer_list>

namespace quarry::tool {

ScopedSignalBlock::ScopedSignalBlock() {
  sigset_t blocked;
  sigfillset(&blocked);
  // Except synchronous faults, which cannot be deferred, job-control stops, which do no harm, and
  // SIGXFSZ, which is ignored below.
  for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP, SIGABRT, SIGSYS, SIGXFSZ,
                           SIGTSTP, SIGTTIN, SIGTTOU}) {
    sigdelset(&blocked, number);
  }
  (void)pthread_sigmask(SIG_BLOCK, &blocked, &before_);
  struct sigaction ignore {};
  ignore.sa_handler = SIG_IGN;
  (void)sigaction(SIGXFSZ, &ignore, &file_size_before_);
}

ScopedSignalBlock::~ScopedSignalBlock() {
  (void)sigaction(SIGXFSZ, &file_size_before_, nullptr);
  (void)pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace quarry::tool
