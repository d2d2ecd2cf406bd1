#include "tools/signals.h"

#include <initializer_list>

namespace quarry::tool {

SignalsHeld::SignalsHeld() {
  sigset_t held;
  sigemptyset(&held);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    sigaddset(&held, number);
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
