#include "sim/stop_signal.h"

#include <initializer_list>

namespace px::sim {

namespace {

// The one process-wide record a signal handler may touch.
volatile sig_atomic_t g_stop_signal = 0;

void on_stop_signal(int signal_number) { g_stop_signal = signal_number; }

}  // namespace

sigset_t install_stop_signals() {
  sigset_t stops, previous;
  sigemptyset(&stops);
  for (int number : {SIGTERM, SIGINT, SIGHUP}) {
    sigaddset(&stops, number);
    struct sigaction action {};
    action.sa_handler = on_stop_signal;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
  }
  sigprocmask(SIG_BLOCK, &stops, &previous);
  for (int number : {SIGTERM, SIGINT, SIGHUP}) sigdelset(&previous, number);
  return previous;
}

int stop_signal() { return g_stop_signal; }

}  // namespace px::sim
