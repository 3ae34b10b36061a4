// The system tells: writing from an unreadable address into a pipe fails.
#include "host/readable_memory.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>

namespace host {

namespace {

constexpr std::uintptr_t kProbeStep = 4096;  // no page is smaller

class ProbePipe {
 public:
  ProbePipe() { made_ = pipe(ends_) == 0; }
  ~ProbePipe() {
    if (!made_) return;
    close(ends_[0]);
    close(ends_[1]);
  }
  ProbePipe(const ProbePipe&) = delete;
  ProbePipe& operator=(const ProbePipe&) = delete;

  bool CanRead(std::uintptr_t address) {
    // The bare system call: a checking wrapper around write would look at the address itself.
    if (!made_ || syscall(SYS_write, ends_[1], address, std::size_t{1}) != 1) return false;
    char byte = 0;
    return read(ends_[0], &byte, 1) == 1;
  }

 private:
  int ends_[2] = {-1, -1};
  bool made_ = false;
};

}  // namespace

bool IsReadable(const void* address, std::size_t bytes) {
  const auto first = reinterpret_cast<std::uintptr_t>(address);
  if (first == 0 || first + bytes < first) return false;
  ProbePipe probe;
  for (std::uintptr_t at = first; at < first + bytes; at = (at / kProbeStep + 1) * kProbeStep) {
    if (!probe.CanRead(at)) return false;
    if (at / kProbeStep == UINTPTR_MAX / kProbeStep) break;
  }
  return true;
}

std::optional<std::string> ReadableText(const char* text, std::size_t limit) {
  if (text == nullptr) return std::nullopt;
  std::string read;
  for (const char* at = text; read.size() <= limit; ++at) {
    const bool newPage = at == text || reinterpret_cast<std::uintptr_t>(at) % kProbeStep == 0;
    if (newPage && !IsReadable(at, 1)) return std::nullopt;
    if (*at == '\0') return read;
    read += *at;
  }
  return std::nullopt;
}

}  // namespace host
