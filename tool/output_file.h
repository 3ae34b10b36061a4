// A file that appears whole or not at all.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

class OutputFile {
 public:
  explicit OutputFile(std::string path);

  // Throws Failure, with one line that names the file, when it is clear beforehand that it cannot
  // be written: no such folder, no permission, or something that is no plain file in its place.
  void Check() const;

  // Writes a temporary file in the same folder and renames it over the old one. The mode of an old
  // file is kept, a symbolic link is followed. While the temporary file exists, the signals by
  // which a person ends a program wait. Throws Failure; then the old file is untouched and the
  // temporary one gone.
  void Write(const std::vector<unsigned char>& bytes) const;

 private:
  [[noreturn]] void Fail(const std::string& reason) const;

  std::string path_;              // as given
  std::filesystem::path target_;  // behind symbolic links
};

}  // namespace tool
