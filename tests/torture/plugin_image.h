// The variables of a loaded plug-in, kept and put back: so that every call finds the plug-in as it
// was right after its start, with nothing looked up, without loading it anew.
#pragma once

#include <cstdint>
#include <vector>

namespace torture {

class PluginImage {
 public:
  // Keeps the variables of the plug-in under test, which must be loaded. Throws std::runtime_error
  // when none is found.
  PluginImage();
  void Restore() const;

 private:
  struct Part {
    std::uintptr_t* place;
    std::vector<std::uintptr_t> words;
  };
  std::vector<Part> parts_;
};

}  // namespace torture
