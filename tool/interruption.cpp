#include "tool/interruption.h"

#include <unistd.h>

#include <cstdlib>

namespace tool {
namespace {

constexpr unsigned kPatience = 2;  // seconds

volatile std::sig_atomic_t gSignal = 0;
volatile std::sig_atomic_t gYields = 0;  // a method works that has yielded

void OnSignal(int signal) {
  if (gYields == 0) EndBySignal(signal);
  gSignal = signal;
  alarm(kPatience);
}

void OnAlarm(int) {
  if (gSignal != 0) EndBySignal(gSignal);
}

// The plug-in, or a library of its, lets no exception pass.
[[noreturn]] void OnTerminate() {
  if (gSignal != 0) EndBySignal(gSignal);
  std::abort();
}

void Handle(int signal, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

void HandleEndingSignals(void (*handler)(int)) {
  const sigset_t ending = EndingSignals();
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (sigismember(&ending, signal) == 1) Handle(signal, handler);
  }
}

}  // namespace

InterruptibleCall::InterruptibleCall(host::Runtime& runtime)
    : runtime_(runtime), onYield_(runtime.onYield), onTerminate_(std::set_terminate(OnTerminate)) {
  gSignal = 0;
  gYields = 0;
  Handle(SIGALRM, OnAlarm);
  HandleEndingSignals(OnSignal);
  runtime_.onYield = [this] {
    gYields = 1;
    if (onYield_) onYield_();
    if (gSignal != 0) throw Interrupted();
  };
}

InterruptibleCall::~InterruptibleCall() {
  HandleEndingSignals(SIG_DFL);
  alarm(0);
  Handle(SIGALRM, SIG_DFL);
  std::set_terminate(onTerminate_);
  runtime_.onYield = onYield_;
}

int InterruptibleCall::Signal() { return gSignal; }

sigset_t EndingSignals() {
  sigset_t ending;
  sigemptyset(&ending);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction now = {};
    sigaction(signal, nullptr, &now);
    if (now.sa_handler != SIG_IGN) sigaddset(&ending, signal);
  }
  return ending;
}

void EndBySignal(int signal) {
  std::signal(signal, SIG_DFL);
  sigset_t one;
  sigemptyset(&one);
  sigaddset(&one, signal);
  sigprocmask(SIG_UNBLOCK, &one, nullptr);
  std::raise(signal);
  std::_Exit(128 + signal);
}

}  // namespace tool
