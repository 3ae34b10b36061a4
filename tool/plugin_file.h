// The plug-in that the user named: a library, a zipped plug-in package, or a package's folder.
#pragma once

#include <memory>
#include <string>

#include "host/plugin_library.h"

namespace tool {

class PluginFile {
 public:
  // A package holds its library at "<name>/Build Resources/Mac Cocoa/<name>.dylib", or else in "Mac
  // Carbon Mach-O"; a folder may be the package or its <name>. Throws UsageError when there is
  // nothing at `given`, or a package or folder has no such library.
  explicit PluginFile(const std::string& given);
  ~PluginFile();
  PluginFile(const PluginFile&) = delete;
  PluginFile& operator=(const PluginFile&) = delete;

  // Where the library can be loaded from while this object lives, also by child processes.
  const std::string& Path() const { return path_; }
  // The same for people: what lies in a package has no path of its own.
  const std::string& Shown() const { return shown_; }
  // A message with the path in it, for people.
  std::string ForPeople(const std::string& message) const;

  // Loads it. Throws std::runtime_error with a message for people.
  std::unique_ptr<host::PluginLibrary> Load(host::Runtime& runtime) const;

 private:
  void OpenPackage(const std::string& given);

  std::string path_;
  std::string shown_;
  int memory_ = -1;  // an unpacked library
};

}  // namespace tool
