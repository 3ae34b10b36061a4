// A shared object of this system, loaded by the system's own loader.
#pragma once

#include "host/loaded_file.h"

namespace host {

class SharedObject : public LoadedFile {
 public:
  explicit SharedObject(const std::string& path);  // throws std::runtime_error
  ~SharedObject() override;

  void* Find(const std::string& name) const override;
  std::vector<MemoryRange> Ranges() const override;

 private:
  void* handle_;
};

}  // namespace host
