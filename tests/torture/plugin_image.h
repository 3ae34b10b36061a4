// The variables of a loaded plug-in, kept and put back: so that every call finds the plug-in as it
// was right after its start, with nothing looked up, without loading it anew.
#pragma once

#include <cstdint>
#include <vector>

#include "host/loaded_file.h"

namespace torture {

class PluginImage {
 public:
  // Keeps the variables of a plug-in that stays loaded while this lives. Throws std::runtime_error
  // when it has none.
  explicit PluginImage(const host::LoadedFile& plugin);
  void Restore() const;

 private:
  struct Part {
    std::uintptr_t* place;
    std::vector<std::uintptr_t> words;
  };
  std::vector<Part> parts_;
};

}  // namespace torture
