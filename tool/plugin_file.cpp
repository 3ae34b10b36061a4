#include "tool/plugin_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tool/exit_status.h"
#include "tool/zip_archive.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kKinds[] = {"Mac Cocoa", "Mac Carbon Mach-O"};

// "<name>/Build Resources/Mac Cocoa/<anything>.dylib"
bool IsLibrary(const fs::path& path, const std::string& kind) {
  const fs::path folder = path.parent_path();
  return path.extension() == ".dylib" && folder.filename() == kind &&
         folder.parent_path().filename() == "Build Resources";
}

// A name out of an archive, which may hold anything, for a message.
std::string Printable(std::string name) {
  for (char& byte : name) {
    if (byte < ' ' || byte > '~') byte = '?';
  }
  return name;
}

std::vector<unsigned char> BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool IsZip(const std::string& path) {
  char mark[2] = {};
  std::ifstream file(path, std::ios::binary);
  return file.read(mark, sizeof mark) && mark[0] == 'P' && mark[1] == 'K';
}

// The paths of all files in a folder, in order.
std::vector<fs::path> FilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code error;
  for (fs::recursive_directory_iterator at(folder, error), end; at != end; at.increment(error)) {
    if (error) break;
    if (at->is_regular_file(error)) files.push_back(at->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

[[noreturn]] void NoLibrary(const std::string& given) {
  throw UsageError("'" + given + "' is no plug-in package: it has no 'Build Resources/" +
                   kKinds[0] + "' with a library in it");
}

fs::path LibraryInFolder(const std::string& given) {
  const std::vector<fs::path> files = FilesIn(given);
  for (const char* kind : kKinds) {
    for (const fs::path& file : files) {
      if (IsLibrary(file, kind)) return file;
    }
  }
  NoLibrary(given);
}

}  // namespace

PluginFile::PluginFile(const std::string& given) : shown_(given) {
  std::error_code error;
  if (fs::is_directory(given, error)) {
    path_ = shown_ = fs::absolute(LibraryInFolder(given)).string();
  } else if (!fs::is_regular_file(given, error)) {
    throw UsageError("no plug-in at '" + given + "'");
  } else if (IsZip(given)) {
    OpenPackage(given);
  } else {
    // A name without a slash would be searched for in the system's folders.
    path_ = shown_ = fs::absolute(given).string();
  }
}

PluginFile::~PluginFile() {
  if (memory_ >= 0) close(memory_);
}

void PluginFile::OpenPackage(const std::string& given) {
  std::vector<unsigned char> library;
  try {
    const ZipArchive archive(BytesOf(given));
    const auto& entries = archive.Entries();
    auto found = entries.end();
    for (const char* kind : kKinds) {
      if (found != entries.end()) break;
      found = std::find_if(entries.begin(), entries.end(),
                           [&](const ZipEntry& entry) { return IsLibrary(entry.name, kind); });
    }
    if (found == entries.end()) NoLibrary(given);
    library = archive.Read(*found);
    shown_ = given + "/" + Printable(found->name);
  } catch (const UsageError&) {
    throw;
  } catch (const std::runtime_error& error) {
    throw UsageError("'" + given + "': " + error.what());
  }
  memory_ = memfd_create("plugin", 0);
  for (std::size_t done = 0; done < library.size();) {
    const ssize_t count = write(memory_, library.data() + done, library.size() - done);
    if (count < 0) throw Failure("'" + given + "' cannot be unpacked: memory is short");
    done += static_cast<std::size_t>(count);
  }
  path_ = "/proc/self/fd/" + std::to_string(memory_);
}

std::string PluginFile::ForPeople(const std::string& message) const {
  const std::size_t place = message.find(path_);
  if (place == std::string::npos) return message;
  return message.substr(0, place) + shown_ + message.substr(place + path_.size());
}

std::unique_ptr<host::PluginLibrary> PluginFile::Load(host::Runtime& runtime) const {
  try {
    return std::make_unique<host::PluginLibrary>(runtime, path_);
  } catch (const std::runtime_error& error) {
    if (std::string(error.what()).find(path_) == std::string::npos) throw;
    throw UsageError(ForPeople(error.what()));
  }
}

}  // namespace tool
