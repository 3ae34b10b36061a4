#include "tool/child_process.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <stdexcept>

namespace tool {
namespace {

void WriteAll(int file, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t done = ::write(file, bytes, count);
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) return;
    bytes += done;
    count -= std::size_t(done);
  }
}

// Everything in the file, a block at a time.
void ForBlocks(int file, const std::function<void(const char*, std::size_t)>& take) {
  char block[65536];
  off_t at = 0;
  for (;;) {
    const ssize_t count = ::pread(file, block, sizeof block, at);
    if (count <= 0) return;
    take(block, std::size_t(count));
    at += count;
  }
}

[[noreturn]] void WorkInChild(const std::function<void(const ChildProcess::Tell&)>& work,
                              pid_t parent, int told, int written) {
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (::getppid() != parent) ::_exit(1);
  ::dup2(written, STDOUT_FILENO);
  ::dup2(written, STDERR_FILENO);
  try {
    work([told](const std::string& text) {
      static_cast<void>(::ftruncate(told, 0) == 0);
      static_cast<void>(::lseek(told, 0, SEEK_SET) == 0);
      WriteAll(told, text.data(), text.size());
    });
  } catch (...) {  // it must not go on as its parent would
    ::_exit(1);
  }
  std::fflush(nullptr);
  ::_exit(0);
}

}  // namespace

ChildProcess::ChildProcess(const std::function<void(const Tell&)>& work) {
  told_ = ::memfd_create("told", MFD_CLOEXEC);
  written_ = ::memfd_create("written", MFD_CLOEXEC);
  std::fflush(nullptr);
  const pid_t parent = ::getpid();
  if (told_ >= 0 && written_ >= 0) id_ = ::fork();
  if (id_ == 0) WorkInChild(work, parent, told_, written_);
  if (id_ < 0) {
    if (told_ >= 0) ::close(told_);
    if (written_ >= 0) ::close(written_);
    throw std::runtime_error("no process can be started");
  }
}

ChildProcess::~ChildProcess() {
  ::close(told_);
  ::close(written_);
}

bool ChildProcess::HasEnded(bool waits) {
  while (!ended_) {
    const pid_t id = ::waitpid(id_, &status_, waits ? 0 : WNOHANG);
    if (id == 0) return false;
    ended_ = id == id_ || errno != EINTR;
  }
  return true;
}

void ChildProcess::Send(int signal) const {
  if (!ended_) ::kill(id_, signal);
}

std::string ChildProcess::Told() const {
  std::string text;
  ForBlocks(told_, [&](const char* bytes, std::size_t count) { text.append(bytes, count); });
  return text;
}

int ChildProcess::Signal() const { return WIFSIGNALED(status_) ? WTERMSIG(status_) : 0; }

int ChildProcess::ExitStatus() const { return WEXITSTATUS(status_); }

void ChildProcess::PassOnWhatItWrote() const {
  char last = '\n';
  ForBlocks(written_, [&](const char* bytes, std::size_t count) {
    std::fwrite(bytes, 1, count, stderr);
    last = bytes[count - 1];
  });
  if (last != '\n') std::fputc('\n', stderr);
}

}  // namespace tool
