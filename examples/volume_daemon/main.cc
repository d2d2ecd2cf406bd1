// volume_daemon FILE: warns when a volume has less free space than its reserve.
//
//   SIGHUP           loads FILE again; a bad one is logged, and the old configuration stays
//   SIGUSR1          turns [Monitor] drain on or off, also in FILE
//   SIGTERM, SIGINT  end it

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>

#include "daemon.h"
#include "log.h"

namespace {

std::uint64_t FreeBytes(const std::string& path, std::error_code* error) {
  return std::filesystem::space(path, *error).available;
}

// Blocks the signals that main waits for, in this thread and all that it starts.
sigset_t BlockSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int one : {SIGHUP, SIGUSR1, SIGTERM, SIGINT}) sigaddset(&signals, one);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: volume_daemon FILE\n";
    return 2;
  }
  const sigset_t signals = BlockSignals();  // before there is another thread
  volume_daemon::StreamLog log(&std::clog);
  volume_daemon::Daemon daemon(argv[1], &log, FreeBytes);
  if (!daemon.Start()) return 1;
  for (;;) {
    int number = 0;
    sigwait(&signals, &number);
    switch (number) {
      case SIGHUP:
        daemon.Reload();
        break;
      case SIGUSR1:
        daemon.ToggleDrain();
        break;
      default:
        log.Write(volume_daemon::Level::kInfo, "ended by a signal");
        return 0;
    }
  }
}
