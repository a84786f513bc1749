#include "script_lines.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "failure.h"
#include "interruption.h"
#include "mesh_format.h"

namespace {

constexpr std::size_t piece_bytes = 16 * 1024;

}  // namespace

ScriptLines::ScriptLines(const std::string& path) {
  file_ = path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const int error = errno;
  Interruption::check();
  if (file_ < 0) throw Failure(ExitCode::cannot_read, path + ": " + std::strerror(error));
}

ScriptLines::~ScriptLines() {
  if (file_ >= 0) close(file_);
}

std::optional<std::string> ScriptLines::next() {
  std::string line;
  ++number_;
  while (at_ < piece_.size() || read_more()) {
    const std::size_t end = std::min(piece_.find('\n', at_), piece_.size());
    line.append(piece_, at_, end - at_);
    at_ = end;
    if (line.size() > longest_line) give_up("the line is longer than 65,536 bytes");
    if (line.find('\0') != std::string::npos) give_up("this is no text: it holds a zero byte");
    if (at_ == piece_.size()) continue;
    ++at_;
    return line;
  }
  if (line.empty()) return std::nullopt;
  return line;
}

bool ScriptLines::read_more() {
  if (is_at_end_) return false;
  piece_.resize(piece_bytes);
  const ssize_t size = read(file_, piece_.data(), piece_bytes);
  const int error = errno;
  const bool is_first = number_ == 1 && at_ == 0;
  piece_.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  at_ = 0;
  is_at_end_ = size <= 0;
  Interruption::check();
  if (size < 0) throw Failure(ExitCode::cannot_read, std::strerror(error));
  if (is_first && starts_with_byte_order_mark(piece_)) at_ = byte_order_mark.size();
  return size > 0;
}

void ScriptLines::give_up(const char* why) {
  is_at_end_ = true;
  piece_.clear();
  at_ = 0;
  throw Failure(ExitCode::wrong_usage, why);
}
