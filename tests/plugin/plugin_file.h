// The plug-in's file started by hand, and a host that only takes registrations: what it was handed
// stays to be looked at, word by word.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/loaded_file.h"
#include "tests/plugin/fake_host.h"

namespace plugin_test {

// Loads the file; process-wide variables of the plug-in start anew with each load.
class PluginFile {
 public:
  PluginFile();  // throws std::runtime_error

  // Calls the export, as often as wanted. What it leaves behind counts as meant.
  void Start();
  // How often the last start asked for the thread's identity.
  int ThreadIdentityCalls() const { return threadIdentityCalls_; }
  // Whether an address lies within this file's code or data.
  bool Contains(std::uintptr_t address) const { return file_->Contains(address); }

 private:
  std::shared_ptr<host::LoadedFile> file_;
  int threadIdentityCalls_ = 0;
};

// A record as the host was handed it.
struct Received {
  bool isModule;
  std::uintptr_t address;
  std::vector<std::uintptr_t> words;
};

// Offers the four entries that registration uses.
class RegisteringHost : public FakeHost {
 public:
  explicit RegisteringHost(double version);
  void SetVersion(double version);
  const std::vector<Received>& Records() const;
};

// `count` words from an address that a record holds.
std::vector<std::uintptr_t> WordsAt(std::uintptr_t address, std::size_t count);
inline std::string TextAt(std::uintptr_t address) { return reinterpret_cast<const char*>(address); }

// The five methods as the host's language writes them.
extern const char* const kDeclarations[5];
extern const char* const kExtendedDeclarations[5];  // for the module

}  // namespace plugin_test
