// How a person ends the program while a method works: by SIGINT (Ctrl-C), SIGTERM or SIGHUP.
#pragma once

#include <csignal>
#include <exception>
#include <functional>

#include "host/runtime.h"

namespace tool {

// Thrown out of the host's yield entry; passes through the plug-in, which lets go of what it holds.
struct Interrupted {};

// Around a call of a method. Once the method has yielded, such a signal ends the call at the next
// yield, by an Interrupted, or the process two seconds later; before that it ends the process at
// once, as it does when none of these exists. What the runtime's yields did before they still do.
// Signals that are ignored stay so. One exists at a time.
class InterruptibleCall {
 public:
  explicit InterruptibleCall(host::Runtime& runtime);
  ~InterruptibleCall();
  InterruptibleCall(const InterruptibleCall&) = delete;
  InterruptibleCall& operator=(const InterruptibleCall&) = delete;

  // The signal that came meanwhile, or 0. A plug-in may have caught the Interrupted.
  static int Signal();

 private:
  host::Runtime& runtime_;
  std::function<void()> onYield_;
  std::terminate_handler onTerminate_;
};

// The signals above, but for those that are ignored.
sigset_t EndingSignals();

// Ends the process by a signal, as if that had never been held back or caught, so that whoever
// waits for the process sees it.
[[noreturn]] void EndBySignal(int signal);

}  // namespace tool
