#include "tool/check_process.h"

#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tool {
namespace {

// What the child is doing, as NUL-terminated text in memory that it shares with its parent. Null
// where no such memory could be had.
constexpr std::size_t kDoingBytes = 4096;
char* gDoing = nullptr;

// " in ScaleZVQ(4, 3, false, 0)"
std::string WhileDoing() {
  return gDoing == nullptr || gDoing[0] == '\0' ? std::string() : " in " + std::string(gDoing);
}

// The first byte that a child sends; the rest is the message.
constexpr char kPassed = '+';
constexpr char kFailed = '-';

void Send(int file, const std::string& text) {
  std::size_t sent = 0;
  while (sent < text.size()) {
    const ssize_t written = write(file, text.data() + sent, text.size() - sent);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    sent += static_cast<std::size_t>(written);
  }
}

[[noreturn]] void RunInChild(const Check& check, const CheckContext& context, int file) {
  const rlimit noCore = {0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  std::string verdict(1, kPassed);
  try {
    check.run(context);
  } catch (const std::exception& error) {
    verdict = kFailed + std::string(error.what());
  } catch (...) {
    verdict = kFailed + std::string("Something that is no standard exception came out.");
  }
  Send(file, verdict);
  _exit(0);
}

// Reads until the child closes its end; false when the time is over before that.
bool ReadAll(int file, std::chrono::milliseconds timeout, std::string& text) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + timeout;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    if (left.count() <= 0) return false;
    pollfd waiting = {file, POLLIN, 0};
    const int ready = poll(&waiting, 1, static_cast<int>(left.count()));
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return false;
    char buffer[4096];
    const ssize_t got = read(file, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return true;
    text.append(buffer, static_cast<std::size_t>(got));
  }
}

CheckOutcome Judge(int status, const std::string& said) {
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    return {false, "The plug-in's process was ended by signal " + std::to_string(signal) + " (" +
                       strsignal(signal) + ")" + WhileDoing() + "."};
  }
  if (said.empty()) {
    return {false, "The plug-in's process ended by itself, with status " +
                       std::to_string(WEXITSTATUS(status)) + ", before the check was done" +
                       WhileDoing() + "."};
  }
  return {said[0] == kPassed, said.substr(1)};
}

}  // namespace

void NoteDoing(const std::string& what) {
  if (gDoing == nullptr) return;
  const std::size_t length = std::min(what.size(), kDoingBytes - 1);
  std::memcpy(gDoing, what.data(), length);
  gDoing[length] = '\0';
}

CheckOutcome RunCheck(const Check& check, const CheckContext& context,
                      std::chrono::seconds timeout) {
  if (gDoing == nullptr) {
    void* shared =
        mmap(nullptr, kDoingBytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared != MAP_FAILED) gDoing = static_cast<char*>(shared);
  }
  NoteDoing("");
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe to a check's process can be made");
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) {
    close(ends[0]);
    close(ends[1]);
    throw std::runtime_error("no process for a check can be made");
  }
  if (child == 0) {
    close(ends[0]);
    RunInChild(check, context, ends[1]);
  }
  close(ends[1]);
  std::string said;
  const bool inTime = ReadAll(ends[0], timeout, said);
  close(ends[0]);
  if (!inTime) kill(child, SIGKILL);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (!inTime) {
    return {false, "It was not done after " + std::to_string(timeout.count()) + " seconds" +
                       WhileDoing() + "."};
  }
  return Judge(status, said);
}

}  // namespace tool
