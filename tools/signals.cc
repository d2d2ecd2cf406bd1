#include "tools/signals.h"

#include <initializer_list>

namespace quarry::tool {

SignalsHeld::SignalsHeld() {
  sigset_t held;
  sigfillset(&held);
  // Those of our own faults cannot wait, those that stop us may stop us, and
  // the one of a file that grows too large is ignored instead.
  for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP, SIGABRT, SIGSYS, SIGXFSZ,
                           SIGTSTP, SIGTTIN, SIGTTOU}) {
    sigdelset(&held, number);
  }
  (void)pthread_sigmask(SIG_BLOCK, &held, &before_);
  struct sigaction ignore {};
  ignore.sa_handler = SIG_IGN;
  (void)sigaction(SIGXFSZ, &ignore, &file_size_before_);
}

SignalsHeld::~SignalsHeld() {
  (void)sigaction(SIGXFSZ, &file_size_before_, nullptr);
  (void)pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace quarry::tool
