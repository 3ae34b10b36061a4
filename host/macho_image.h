// A macOS library for 32-bit Intel (Mach-O) in the memory of this process, a 32-bit one. What it
// takes from other libraries comes from the process, by name. Both systems call functions alike,
// but return small structures differently: none may pass between such a library and the process.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/loaded_file.h"
#include "host/macho_exports.h"
#include "host/macho_file.h"
#include "host/macho_fixups.h"
#include "host/macho_memory.h"
#include "host/macho_unwind.h"

namespace host {

class MachoImage : public LoadedFile {
 public:
  // Maps the bytes of a file, puts all addresses in place, protects the memory and makes its
  // exception tables known. Runs none of its code. Throws FileFault.
  explicit MachoImage(std::vector<std::uint8_t> bytes);
  ~MachoImage() override;  // runs its terminators, last one first, when it was initialised

  // Runs its initialisers in order; what one throws passes out.
  void Initialise();

  void* Find(const std::string& name) const override;
  std::vector<MemoryRange> Ranges() const override;

 private:
  void Rebase(FixupKind kind, std::uint32_t linked);
  void Bind(BindList list, const MachoBind& bind);
  std::uint32_t AddressFor(const MachoBind& bind) const;
  std::string Provider(int library) const;
  std::optional<std::uint32_t> OwnAddress(const std::string& symbol) const;
  void CollectRoutines();
  void RegisterFrames();
  bool Allows(const FrameAddress& target) const;
  bool IsCode(std::uint32_t linked, std::uint32_t size) const;

  std::vector<std::uint8_t> bytes_;  // the file's; `file_` refers to them
  MachoFile file_;
  MachoExports exports_;
  MachoMemory memory_;
  std::vector<std::uint32_t> initialisers_, terminators_;  // addresses
  std::vector<std::unique_ptr<RegisteredFrames>> frames_;
  bool initialised_ = false;
};

// Loads a file, or gives the image that it is loaded as already. Throws std::runtime_error with one
// line that starts with the path; what an initialiser throws passes out unchanged.
std::shared_ptr<MachoImage> LoadMachoFile(const std::string& path);

}  // namespace host
