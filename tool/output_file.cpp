#include "tool/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "tool/exit_status.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

// Holds back the signals that would end the program between making a temporary file and renaming
// it. They take effect when this ends.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t held;
    sigemptyset(&held);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) sigaddset(&held, signal);
    sigprocmask(SIG_BLOCK, &held, &before_);
  }
  ~SignalsHeld() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
  sigset_t before_;
};

// Writes everything and closes; 0 or the error number.
int WriteAndClose(int file, const std::vector<unsigned char>& bytes) {
  int error = 0;
  for (std::size_t done = 0; done < bytes.size() && error == 0;) {
    const ssize_t count = ::write(file, bytes.data() + done, bytes.size() - done);
    if (count >= 0) {
      done += std::size_t(count);
    } else if (errno != EINTR) {
      error = errno;
    }
  }
  if (::close(file) != 0 && error == 0) error = errno;
  return error;
}

}  // namespace

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
  std::error_code error;
  target_ = fs::weakly_canonical(path_, error);
  if (error) target_ = path_;
}

void OutputFile::Fail(const std::string& reason) const {
  throw Failure("cannot write '" + path_ + "': " + reason);
}

void OutputFile::Check() const {
  struct stat found;
  if (::stat(target_.c_str(), &found) == 0) {
    if (S_ISDIR(found.st_mode)) Fail("it is a folder");
    if (!S_ISREG(found.st_mode)) Fail("it is not a plain file");
    if (::access(target_.c_str(), W_OK) != 0) Fail(std::strerror(errno));
  }
  const fs::path folder = target_.has_parent_path() ? target_.parent_path() : fs::path(".");
  if (::stat(folder.c_str(), &found) != 0) {
    Fail(std::string(std::strerror(errno)) + " (the folder " + folder.string() + ")");
  }
  if (!S_ISDIR(found.st_mode)) Fail(std::strerror(ENOTDIR));
  if (::access(folder.c_str(), W_OK | X_OK) != 0) Fail(std::strerror(errno));
}

void OutputFile::Write(const std::vector<unsigned char>& bytes) const {
  Check();
  struct stat old;
  const bool replaces = ::stat(target_.c_str(), &old) == 0;
  const fs::path temporary =
      target_.parent_path() / (".picturehost-" + std::to_string(::getpid()) + ".part");
  const SignalsHeld held;
  const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (file < 0) Fail(std::strerror(errno));
  if (replaces) static_cast<void>(::fchmod(file, old.st_mode & 07777) == 0);
  int error = WriteAndClose(file, bytes);
  if (error == 0 && ::rename(temporary.c_str(), target_.c_str()) != 0) error = errno;
  if (error != 0) {
    ::unlink(temporary.c_str());
    Fail(std::strerror(error));
  }
}

}  // namespace tool
