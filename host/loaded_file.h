// A library in this process, loaded from its file: a shared object of this system, or a macOS
// library for 32-bit Intel when this is a 32-bit process.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace host {

struct MemoryRange {
  std::uintptr_t first, last;  // addresses; `last` is one past the end
  bool writable;
};

class LoadedFile {
 public:
  LoadedFile() = default;
  virtual ~LoadedFile() = default;  // unloads it when nobody else has it loaded
  LoadedFile(const LoadedFile&) = delete;
  LoadedFile& operator=(const LoadedFile&) = delete;

  // What the file exports under a name as it is in C; null when nothing.
  virtual void* Find(const std::string& name) const = 0;

  // The file's memory. Only what its code may still write once it is loaded counts as writable.
  virtual std::vector<MemoryRange> Ranges() const = 0;

  bool Contains(std::uintptr_t address) const;
  std::vector<MemoryRange> WritableRanges() const;
};

// Loads a file and runs its initialisers; one that is loaded already is loaded once more and not
// initialised again. Throws std::runtime_error with one clear line that starts with the path. What
// an initialiser throws passes out unchanged. One thread at a time.
std::shared_ptr<LoadedFile> LoadFile(const std::string& path);

}  // namespace host
