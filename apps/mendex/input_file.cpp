#include "input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "failure.h"
#include "interruption.h"
#include "mesh_format.h"

namespace {

constexpr std::size_t buffer_bytes = 256 * 1024;

[[noreturn]] void fail(int error) {
  Interruption::check();
  throw Failure(ExitCode::cannot_read, std::string("cannot be read: ") + std::strerror(error));
}

}  // namespace

InputFile::InputFile(const std::string& path) {
  Interruption::check();
  file_ = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file_ < 0) fail(errno);
  struct stat status = {};
  if (fstat(file_, &status) == 0 && S_ISREG(status.st_mode)) size_ = static_cast<std::uint64_t>(status.st_size);
  std::string head(sniffed_bytes, '\0');
  std::size_t filled = 0;
  while (filled < head.size()) {
    const ssize_t n = read_from_file(&head[filled], head.size() - filled);
    if (n < 0) {
      const int error = error_;
      close(file_);
      fail(error);
    }
    if (n == 0) break;
    filled += static_cast<std::size_t>(n);
  }
  head.resize(filled);
  head_ = std::move(head);
}

InputFile::~InputFile() { close(file_); }

double InputFile::fraction_read() const {
  return size_ && *size_ > 0 ? static_cast<double>(bytes_read_) / static_cast<double>(*size_) : 0.0;
}

FILE* InputFile::stream() { return make_stream(read_raw); }

FILE* InputFile::stream_without_names() {
  if (starts_with_byte_order_mark(head_)) head_used_ = byte_order_mark.size();
  return make_stream(read_filtered);
}

FILE* InputFile::make_stream(ssize_t (*read)(void*, char*, std::size_t)) {
  cookie_io_functions_t functions = {};
  functions.read = read;
  FILE* stream = fopencookie(this, "rb", functions);
  if (stream == nullptr) fail(errno);
  std::setvbuf(stream, nullptr, _IOFBF, buffer_bytes);
  return stream;
}

// A signal that asks for the end cuts a waiting read short; any other one lets it go on.
ssize_t InputFile::read_from_file(char* to, std::size_t size) {
  while (!Interruption::requested()) {
    const ssize_t n = ::read(file_, to, size);
    if (n >= 0) {
      bytes_read_ += static_cast<std::uint64_t>(n);
      return n;
    }
    if (errno == EINTR) continue;
    error_ = errno;
    return -1;
  }
  error_ = EINTR;
  return -1;
}

ssize_t InputFile::read_more(char* to, std::size_t size) {
  const std::size_t ready = std::min(size, head_.size() - head_used_);
  if (ready == 0) return read_from_file(to, size);
  std::memcpy(to, head_.data() + head_used_, ready);
  head_used_ += ready;
  return static_cast<ssize_t>(ready);
}

ssize_t InputFile::read_raw(void* self, char* to, std::size_t size) {
  return static_cast<InputFile*>(self)->read_more(to, size);
}

// Puts the next filtered piece into `text_`, which may stay empty; false at the end of the file and on an error.
bool InputFile::fill_text() {
  text_.clear();
  text_used_ = 0;
  if (is_at_end_) return false;
  piece_.resize(buffer_bytes);
  const ssize_t n = read_more(&piece_[0], piece_.size());
  is_at_end_ = n <= 0;
  if (n > 0) names_.add(piece_.data(), static_cast<std::size_t>(n), text_);
  if (n == 0) names_.finish(text_);
  return n >= 0;
}

ssize_t InputFile::read_filtered(void* self, char* to, std::size_t size) {
  InputFile& file = *static_cast<InputFile*>(self);
  while (file.text_used_ == file.text_.size()) {
    if (!file.fill_text()) return file.error_ != 0 ? -1 : 0;
  }
  const std::size_t ready = std::min(size, file.text_.size() - file.text_used_);
  std::memcpy(to, file.text_.data() + file.text_used_, ready);
  file.text_used_ += ready;
  return static_cast<ssize_t>(ready);
}
