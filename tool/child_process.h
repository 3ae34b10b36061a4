// Work in a process of its own, so that a crash costs no more than that work.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace tool {

class ChildProcess {
 public:
  // Replaces what was told before; what was told last stays when the process ends, however it ends.
  using Tell = std::function<void(const std::string&)>;

  // Starts a process that does `work`, which throws nothing, and ends with status 0. What it and
  // the plug-in write to standard output and standard error is kept. It ends, by SIGTERM, when its
  // parent does. Throws std::runtime_error when there can be no process.
  explicit ChildProcess(const std::function<void(const Tell&)>& work);
  // The process must have been waited for.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // Whether it has ended; waits for that only when `waits`. Once ended, it stays so.
  bool HasEnded(bool waits);
  void Send(int signal) const;

  // All of these once it has ended.
  std::string Told() const;
  int Signal() const;      // that ended it, or 0
  int ExitStatus() const;  // when no signal did
  // Writes to standard error what was kept, and ends its last line.
  void PassOnWhatItWrote() const;

 private:
  pid_t id_ = -1;
  int told_ = -1, written_ = -1;  // files in memory
  int status_ = 0;
  bool ended_ = false;
};

}  // namespace tool
