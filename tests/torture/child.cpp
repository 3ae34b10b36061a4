#include "tests/torture/child.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace torture {

std::string WhyNotAborted(const std::function<void()>& action) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) return "no child process could be made";
  if (child == 0) {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    try {
      action();
    } catch (...) {
      _exit(1);
    }
    _exit(0);
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child) return "the child process was lost";
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) return "";
  if (WIFSIGNALED(status)) return "ended by signal " + std::to_string(WTERMSIG(status));
  return "went on, exit " + std::to_string(WEXITSTATUS(status));
}

}  // namespace torture
