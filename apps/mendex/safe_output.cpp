#include "safe_output.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "failure.h"
#include "interruption.h"

namespace {

constexpr std::size_t buffer_bytes = 256 * 1024;
constexpr int most_links = 40;  // as many as the system itself follows

[[noreturn]] void fail(const std::string& why) {
  Interruption::check();
  throw Failure(ExitCode::cannot_write, "cannot be written: " + why);
}

[[noreturn]] void fail(int error) { fail(std::string(std::strerror(error))); }

// The folder part of a path with its slash; empty for a plain name.
std::string folder_of(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

// Follows symbolic links to the file that is to be replaced, which need not exist.
std::string follow_links(std::string path) {
  for (int k = 0; k < most_links; ++k) {
    char link[PATH_MAX];
    const ssize_t n = readlink(path.c_str(), link, sizeof link);
    if (n < 0) return path;
    const std::string destination(link, static_cast<std::size_t>(n));
    path = destination[0] == '/' ? destination : folder_of(path) + destination;
  }
  fail(ELOOP);
}

mode_t permissions_of_new_files() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

std::string SafeOutput::temporary_name_of(pid_t process) { return ".mendex-" + std::to_string(process) + "-"; }

SafeOutput::SafeOutput(const std::string& path) : target_(follow_links(path)), folder_(folder_of(target_)) {
  struct stat status = {};
  replaces_ = stat(target_.c_str(), &status) == 0;
  if (replaces_ && S_ISDIR(status.st_mode)) fail(EISDIR);
  if (replaces_ && !S_ISREG(status.st_mode)) fail("it is not a regular file");
  if (replaces_ && access(target_.c_str(), W_OK) != 0) fail(errno);
  std::string name = folder_ + temporary_name_of(getpid()) + "XXXXXX";
  file_ = mkostemp(&name[0], O_CLOEXEC);
  if (file_ < 0) fail(errno);
  temporary_ = name;
  Interruption::set_unfinished_file(temporary_);
  take_over_permissions();
}

SafeOutput::~SafeOutput() {
  if (!temporary_.empty()) unlink(temporary_.c_str());
  Interruption::set_unfinished_file("");
  close(file_);
}

// The owner first, because changing it drops permission bits. Not being allowed to is no error: the file is then simply
// the user's.
void SafeOutput::take_over_permissions() const {
  struct stat status = {};
  if (!replaces_ || stat(target_.c_str(), &status) != 0) {
    fchmod(file_, permissions_of_new_files());
    return;
  }
  if ((status.st_uid != geteuid() || status.st_gid != getegid()) && fchown(file_, status.st_uid, status.st_gid) != 0)
    errno = 0;
  fchmod(file_, status.st_mode & 07777);
}

FILE* SafeOutput::stream() {
  cookie_io_functions_t functions = {};
  functions.write = write_piece;
  functions.seek = move;
  FILE* stream = fopencookie(this, "wb", functions);
  if (stream == nullptr) fail(errno);
  std::setvbuf(stream, nullptr, _IOFBF, buffer_bytes);
  return stream;
}

ssize_t SafeOutput::write_piece(void* self, const char* from, std::size_t size) {
  SafeOutput& output = *static_cast<SafeOutput*>(self);
  if (output.error_ != 0) return 0;
  for (std::size_t done = 0; done < size;) {
    const ssize_t n = write(output.file_, from + done, size - done);
    if (n < 0 && errno == EINTR && !Interruption::requested()) continue;
    if (n < 0) {
      output.error_ = errno;
      return 0;
    }
    done += static_cast<std::size_t>(n);
  }
  return static_cast<ssize_t>(size);
}

int SafeOutput::move(void* self, off64_t* place, int origin) {
  const off64_t reached = lseek64(static_cast<SafeOutput*>(self)->file_, *place, origin);
  if (reached < 0) return -1;
  *place = reached;
  return 0;
}

void SafeOutput::check() const {
  if (error_ != 0) fail(error_);
}

void SafeOutput::flush_to_disk() const {
  if (fsync(file_) != 0) fail(errno);
}

void SafeOutput::commit() {
  Interruption::check();
  if (rename(temporary_.c_str(), target_.c_str()) != 0) fail(errno);
  temporary_.clear();
}
